#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "qellib10/platform/drawing/pdf_info.h"

namespace qel {

/// What a document says that nobody has given a date.
enum class UndatedPdf { kYear2000, kNow };

/// The date of a PDF document in the two forms that it needs: Cairo 1.16 writes dates without the "D:" that readers
/// look for, so its text is written over with the right one, which is shorter, when the document is complete.
class PdfDate {
public:
    /// That of a document that is started now.
    PdfDate(const PdfInfo& info, UndatedPdf undated);

    /// For Cairo, as in 2025-11-25T18:00:00+00:00.
    std::string Iso() const;
    /// As in D:20251125180000Z, without the Z where the time zone is not known.
    const std::string& Text() const { return m_text; }
    /// Puts Text() in the place of what Cairo has made of Iso(). A document without that stays as it is.
    void WriteInto(std::span<std::byte> document) const;

private:
    std::string m_text;
};

}  // namespace qel
