#include <qellib10/gtk/dialogs.h>
#include <qellib10/gtk/drawing_view.h>

// Built without the headers of GTK, and run without a display.
int main() {
    return qel::UseGtkDialogs() && qel::DrawingView([](CDC&, const CSize&) {}).Widget() == nullptr;
}
