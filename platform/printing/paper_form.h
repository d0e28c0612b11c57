#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// A sheet that a printer takes, as it lies in portrait; hundredths of a millimetre.
struct Medium {
    std::string name;  ///< self-describing (PWG 5101.1), as in iso_a4_210x297mm
    SIZE size{0, 0};
    RECT margins{0, 0, 0, 0};  ///< from each edge
};

/// A form by its code. Two forms of one size and use share a name.
struct PaperForm {
    const char* medium;
    bool isTurned = false;             ///< the form is the medium lying on its side
    const char* substitute = nullptr;  ///< where a printer does not have the medium
};

/// The form of a code from 1 to 41; null for another.
const PaperForm* FindPaperForm(int code) noexcept;

/// The lowest code whose form is a sheet of this size that is not turned.
std::optional<int> PaperFormOf(const SIZE& sheet);

/// The medium of a standard name with its size, without margins.
std::optional<Medium> StandardMedium(const char* name);

/// All media that forms are made of, without margins.
std::vector<Medium> MediaOfForms();

/// The medium of this size, up to a millimetre; of several the one with the widest margins, which needs no special
/// feed. Null when there is none.
const Medium* FindMedium(std::span<const Medium> media, const SIZE& size);

}  // namespace qel
