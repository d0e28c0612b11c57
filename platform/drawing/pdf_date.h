#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "qellib10/platform/drawing/pdf_info.h"

namespace qel {

/// The date of a document that was given none.
enum class UndatedPdf { kYear2000, kNow };

/// The date of a PDF document in the two forms that it needs. Cairo 1.16 writes dates without the "D:" that readers
/// look for; so its text is overwritten with the correct one, which is shorter, when the document is complete.
class PdfDate {
public:
    /// The date of a document that starts now.
    PdfDate(const PdfInfo& info, UndatedPdf undated);

    /// For Cairo, as in 2025-11-25T18:00:00+00:00.
    std::string Iso() const;
    /// As in D:20251125180000Z, without the Z where the time zone is not known.
    const std::string& Text() const { return m_text; }
    /// Replaces the text that Cairo made from Iso() by Text(). A document without it does not change.
    void WriteInto(std::span<std::byte> document) const;

private:
    std::string m_text;
};

}  // namespace qel
