#include "qellib10/platform/drawing/png_file.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/drawing/drawing_object.h"
#include "qellib10/platform/drawing/page_setup.h"
#include "qellib10/platform/drawing/png_encoder.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/replacement.h"

namespace qel {

int SavePng(const CBitmap& bitmap, const char* path, int dotsPerInch) {
    const auto object = FindObject<BitmapObject>(bitmap.GetSafeHandle());
    if (!object || path == nullptr || dotsPerInch < 1 || dotsPerInch > PageSetup::kFinestResolution) return 0;
    object->pixels->Settle();
    return AsResult([&] {
        const std::vector<std::byte> file = EncodePng(*object->pixels, dotsPerInch);
        Replacement target(path);
        WriteFully(target.File(), file, path);
        target.Commit();
        return 1;
    });
}

}  // namespace qel
