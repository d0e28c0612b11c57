#include "qellib10/platform/drawing/drawing_object.h"

#include <array>
#include <atomic>

#include "qellib10/platform/drawing/handle_table.h"

namespace qel {
namespace {

struct Entry {
    explicit Entry(DrawingObject made) : object(std::move(made)) {}

    DrawingObject object;
    std::atomic<CGdiObject*> owner = nullptr;
};

HandleTable<Entry>& Objects() {
    static HandleTable<Entry>& table = *new HandleTable<Entry>;
    return table;
}

constexpr int kStockObjects = SYSTEM_FONT + 1;

const std::array<HGDIOBJ, kStockObjects>& StockObjects() {
    static const std::array<HGDIOBJ, kStockObjects> handles = [] {
        std::array<HGDIOBJ, kStockObjects> made{};
        constexpr std::array kGrey = {RGB(255, 255, 255), RGB(192, 192, 192), RGB(128, 128, 128), RGB(64, 64, 64),
                                      RGB(0, 0, 0)};
        for (std::size_t i = 0; i < kGrey.size(); ++i) {
            made[WHITE_BRUSH + i] = AddDrawingObject(BrushObject{{BS_SOLID, kGrey[i], 0}});
        }
        made[NULL_BRUSH] = AddDrawingObject(BrushObject{{BS_NULL, 0, 0}});
        made[WHITE_PEN] = AddDrawingObject(PenObject{PS_SOLID, 0, RGB(255, 255, 255)});
        made[BLACK_PEN] = AddDrawingObject(PenObject{PS_SOLID, 0, 0});
        made[NULL_PEN] = AddDrawingObject(PenObject{PS_NULL, 0, 0});
        made[SYSTEM_FONT] = AddDrawingObject(FontObject{});
        return made;
    }();
    return handles;
}

}  // namespace

HGDIOBJ AddDrawingObject(DrawingObject object) { return Objects().Add(std::make_shared<Entry>(std::move(object))); }

std::shared_ptr<const DrawingObject> FindDrawingObject(HGDIOBJ handle) {
    std::shared_ptr<Entry> entry = Objects().Find(handle);
    const DrawingObject* const object = entry ? &entry->object : nullptr;
    return object != nullptr ? std::shared_ptr<const DrawingObject>(std::move(entry), object) : nullptr;
}

bool RemoveDrawingObject(HGDIOBJ handle) {
    for (const HGDIOBJ stock : StockObjects()) {
        if (stock == handle) return false;
    }
    return Objects().Remove(handle) != nullptr;
}

HGDIOBJ StockObject(int number) {
    return number >= 0 && number < kStockObjects ? StockObjects()[static_cast<std::size_t>(number)] : nullptr;
}

void SetOwner(HGDIOBJ handle, CGdiObject* owner) {
    if (const auto entry = Objects().Find(handle)) entry->owner = owner;
}

CGdiObject* FindOwner(HGDIOBJ handle) {
    const auto entry = Objects().Find(handle);
    return entry ? entry->owner.load() : nullptr;
}

}  // namespace qel
