// The windows among the examples, as programs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "qellib10/graph/chart_theme.h"

#include "../support/line.h"
#include "../support/temp_folder.h"
#include "screen.h"

namespace {

int ExitCode(const std::string& command) { return WEXITSTATUS(std::system((command + " 2>/dev/null").c_str())); }

int Scale() {
    const char* const scale = std::getenv("GDK_SCALE");
    return scale != nullptr ? std::atoi(scale) : 1;
}

// In how many columns of a picture the first series is.
long ColumnsWithCurve(const std::string& file) {
    const Pixels picture(gdk_pixbuf_new_from_file(file.c_str(), nullptr));
    if (picture == nullptr) return -1;
    const int width = gdk_pixbuf_get_width(picture.get()), height = gdk_pixbuf_get_height(picture.get());
    const COLORREF color = qel::ChartTheme::Light().palette.front();
    const unsigned wanted = unsigned{GetRValue(color)} << 16U | unsigned{GetGValue(color)} << 8U | GetBValue(color);
    long columns = 0;
    for (int x = 0; x < width; ++x) {
        int y = 0;
        while (y < height && At(picture, x, y) != wanted) ++y;
        columns += y < height ? 1 : 0;
    }
    return columns / Scale();
}

}  // namespace

TEST(Viewer, ShowsAllPointsOrTheLastMinute) {
    const TempFolder folder;
    const std::string file = folder.Posix("window.png").string(), viewer = QELLIB10_VIEWER " ";
    ASSERT_EQ(ExitCode(viewer + "--points 1500 --screenshot " + file), 0);
    const long half = ColumnsWithCurve(file);
    ASSERT_EQ(ExitCode(viewer + "--points 1500 --all --screenshot " + file), 0);
    const long all = ColumnsWithCurve(file);
    EXPECT_GT(all, 780) << "the curve fills the axis";
    EXPECT_NEAR(double(half) / double(all), 0.51, 0.02) << "half a minute of a minute, and what was measured meanwhile";
    EXPECT_EQ(ExitCode(viewer + "--screenshot " + folder.Posix("no/such.png").string()), 1);
    for (const char* wrong : {"--points", "--points -1", "--points 10000001", "--screenshot ''", "-x"})
        EXPECT_EQ(ExitCode(viewer + wrong), 2) << wrong;
}

#ifdef QELLIB10_TITRATOR
TEST(Titrator, TitratesRegistersSignsAndPrints) {
    const TempFolder folder;
    setenv("QELLIB10_PDF_DIR", folder.Posix("").c_str(), 1);
    const std::string data = folder.Posix("data").string(), picture = folder.Posix("window.png").string();
    for (const char* version : {"1", "2"}) {
        SCOPED_TRACE(version);
        ASSERT_EQ(ExitCode(QELLIB10_TITRATOR " " + data + " --shoot " + picture), 0);
        EXPECT_GT(ColumnsWithCurve(picture), 600);
    }
    EXPECT_GT(folder.Read("Titration (2).pdf").size(), 20000U);
    const std::string trail = folder.Read("data/archive/trail.jsonl");
    const auto count = [&](const std::string& action) {
        long found = 0;
        for (std::size_t at = 0; (at = trail.find("\"action\":\"" + action + "\"", at)) != std::string::npos; ++at)
            ++found;
        return found;
    };
    EXPECT_EQ(Line({count("result registered"), count("signature"), count("logon"), count("signature refused")}),
              "2 2 2 0");
    EXPECT_EQ(folder.Read("data/result.txt").find("air bubble") != std::string::npos, true);
    EXPECT_EQ(ExitCode(QELLIB10_TITRATOR), 2);
    EXPECT_EQ(ExitCode(QELLIB10_TITRATOR " /dev/null/x"), 1);
}
#endif
