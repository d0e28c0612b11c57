#pragma once

#include <string_view>

#include "qellib10/gtk/chart_scene.h"

namespace qel {

/// What leaves the window: copies, files and prints of the chart, as it is zoomed.
class ChartOutput {
public:
    explicit ChartOutput(ChartScene& scene) : m_scene(scene) {}

    void CopyPicture();  ///< in the pixels of the screen
    void CopyCsv();

    bool Save(std::string_view path);  ///< see WriteChartFile
    bool Print();                      ///< false also if the user cancels

    // For the user, with dialogs that show what went wrong.
    void AskAndSave();
    void AskAndPrint();

private:
    void ShowFailure(const char* what);

    ChartScene& m_scene;
};

}  // namespace qel
