#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// A sheet that a printer takes, in portrait; hundredths of a millimetre.
struct Medium {
    std::string name;  ///< self-describing (PWG 5101.1), for example iso_a4_210x297mm
    SIZE size{0, 0};
    RECT margins{0, 0, 0, 0};  ///< from each edge
};

/// A form by its code. Two forms of one size and use share a name.
struct PaperForm {
    const char* medium;
    bool isTurned = false;             ///< the form is the medium in landscape
    const char* substitute = nullptr;  ///< used if a printer does not have the medium
};

/// The form of a code from 1 to 41; null for any other.
const PaperForm* FindPaperForm(int code) noexcept;

/// The lowest code of a form with this size that is not turned.
std::optional<int> PaperFormOf(const SIZE& sheet);

/// The medium with a standard name and its size, without margins.
std::optional<Medium> StandardMedium(const char* name);

/// The media of all forms, without margins.
std::vector<Medium> MediaOfForms();

/// The medium of this size, within a millimetre; of several, the one with the widest margins, because it needs no
/// special feed. Null if there is none.
const Medium* FindMedium(std::span<const Medium> media, const SIZE& size);

}  // namespace qel
