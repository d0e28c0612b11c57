#include "qellib10/platform/drawing/png_file.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/drawing/drawing_object.h"
#include "qellib10/platform/drawing/page_setup.h"
#include "qellib10/platform/drawing/png_encoder.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/replacement.h"

namespace qel {

int SavePng(const CBitmap& bitmap, const char* path, int dotsPerInch) {
    constexpr const char* kOperation = "qel::SavePng";
    const auto object = FindObject<BitmapObject>(bitmap.GetSafeHandle());
    if (!object) return Operation(kOperation).Failed(FailureKind::kState, "", "no bitmap");
    if (path == nullptr) return RefuseNull(kOperation);
    if (dotsPerInch < 1 || dotsPerInch > PageSetup::kFinestResolution)
        return Operation(kOperation).Failed(FailureKind::kArgument, path, "a resolution out of range");
    object->pixels->Settle();
    return AsResult(kOperation, [&] {
        const std::vector<std::byte> file = EncodePng(*object->pixels, dotsPerInch);
        Replacement target(path);
        WriteFully(target.File(), file, path);
        target.Commit();
        return 1;
    });
}

}  // namespace qel
