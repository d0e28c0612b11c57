#include "../support/test.h"
#include "qel_folder.h"
#include "qellib10/print/queue_data.h"

// Pictures that the tool makes of print jobs and tables.

namespace {

// Width and height are in the first chunk, highest byte first.
std::pair<int, int> PngSize(const std::string& png) {
    const auto number = [&](std::size_t at) {
        int value = 0;
        for (const char c : png.substr(at, 4)) value = value * 256 + static_cast<unsigned char>(c);
        return value;
    };
    return {number(16), number(20)};
}

// Two cells a page, at 600 dots per inch on A4.
CQelPrintJobQueueData Job(const char* text) {
    CQelPrintJobQueueData job;
    CQelPrintJobPageStyle& style = job.GetPageStyle();
    style.SetStyleName("Report");
    style.SetDpi(600);
    style.SetPrintBlock({1, 2});
    style.SetPrinterDevice("PDF");
    job.SetDefaultFont("Arial", 120, 0);
    job.AddMillimetreCommandText({100, 100, 1000, 200}, text, 1);
    return job;
}

}  // namespace

TEST(QelJob, DrawsAndPrintsPages) {
    const QelFolder folder;
    const EnvironmentScope pdfs("QELLIB10_PDF_DIR", folder.Posix().c_str());
    for (const char* name : {"one", "two", "three"}) Job(name).SaveJobFile(folder.Path(name));
    ASSERT_EQ(folder.Qel("seal three >/dev/null"), "0 ");
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"render one two three -o page.png --resolution 100", "0 page-1.png\npage-2.png\n"},
             {"render one two three -o page.pdf", "0 page.pdf\n"},
             {"render one two three -o page.pdf", "1 qel: page.pdf: exists; --force replaces it\n"},
             {"render one two three -o last.svg --page 2", "0 last.svg\n"},
             {"render one -o last.svg --page 2 --force", "2 qel: --page: the document has 1 page; see qel --help\n"},
             {"render one -o one.svg --paper 10000x10000",
              "2 qel: the page is too large for a picture of this resolution; see qel --help\n"},
             {"render one two three -o both.pdf --json | tr -d ' \\n'",
              "0 [{\"file\":\"both.pdf\",\"page\":1,\"pages\":2}]"},
             {"render one two three -o last.svg --page 2 --force --json | tr -d ' \\n'",
              "0 [{\"file\":\"last.svg\",\"page\":2,\"pages\":1}]"},
             {"render one -o one.gif", "2 qel: \"one.gif\" ends with neither .png, .svg nor .pdf; see qel --help\n"},
             {"render none -o none.png", "5 qel: none: file not found\n"},
             {"print one two", "0 "},
             {"show three --json | tr -d ' \\n' | grep -o '\"dpi.*'",
              "0 \"dpi\":600,\"across\":1,\"down\":2,\"commands\":{\"text\":1}}]\n"},
         })
        EXPECT_EQ(folder.Qel("job " + std::string(arguments)), answer) << arguments;
    EXPECT_TRUE(folder.Qel("job print one --printer none").starts_with("1 qel: the printer \"none\": "));
    EXPECT_EQ(PngSize(folder.Read("page-2.png")), std::pair(827, 1169));
    EXPECT_NE(folder.Read("page-1.png"), folder.Read("page-2.png"));
    const std::string place = "cd " + folder.Posix().native() + " && ";
    EXPECT_EQ(ResultOf(place + "pdftotext page.pdf - | tr -s '\\n\\f' ' '"), "0 one two three ");
    EXPECT_EQ(ResultOf(place + "pdfinfo page.pdf | grep -o 'Pages.*\\|A4'"), "0 Pages:           2\nA4\n");
    EXPECT_EQ(ResultOf(place + "pdftotext Report.pdf - | tr -s '\\n\\f' ' '"), "0 one two ");
    EXPECT_NE(folder.Read("last.svg").find(">three<"), std::string::npos);
}

TEST(QelJob, SaysWhatIsMissingInAJob) {
    const QelFolder folder;
    const auto save = [&](const char* name, const auto& change) {
        CQelPrintJobQueueData job = Job(name);
        change(job.GetPageStyle());
        job.SaveJobFile(folder.Path(name));
    };
    save("a4", [](CQelPrintJobPageStyle&) {});
    save("form", [](CQelPrintJobPageStyle& style) { style.SetPaperForm(65536 + 9); });
    save("dpi", [](CQelPrintJobPageStyle& style) { style.SetDpi(0); });
    save("coarse", [](CQelPrintJobPageStyle& style) { style.SetDpi(50); });
    save("cells", [](CQelPrintJobPageStyle& style) { style.SetPrintBlock({0, 1}); });
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"render form -o a.png", "1 qel: the size of the job's paper is unknown; give it with --paper\n"},
             {"render form -o a.png --paper 100x50", "0 a.png\n"},
             {"render a4 -o b.png --paper 100x5",
              "2 qel: \"100x5\" is not a size in millimetres such as 210x297; see qel --help\n"},
             {"render dpi -o b.png", "1 qel: the job does not say its resolution; give it with --dpi\n"},
             {"render dpi -o b.png --dpi 300", "0 b.png\n"},
             {"render cells -o c.png", "1 qel: the page style has no cells\n"},
             {"render a4 dpi -o c.png", "1 qel: dpi: has another page style than the first job\n"},
             {"print coarse", "1 qel: the printer \"PDF\" has 600 dots per inch, the job is for 50\n"},
         })
        EXPECT_EQ(folder.Qel("job " + std::string(arguments)), answer) << arguments;
    EXPECT_EQ(PngSize(folder.Read("a.png")), std::pair(591, 295));
    EXPECT_FALSE(folder.Has("c.png"));
}

TEST(QelPlot, ReadsTablesAsTheyAreWritten) {
    const QelFolder folder;
    const auto drawn = [&](const std::string& table, const std::string& arguments) {
        folder.Write("t.csv", table);
        return folder.Qel("plot t.csv -o p.pdf --force --json " + arguments + " | tr -d ' \\n'");
    };
    const auto expected = [](int points, const char* names, const char* ranges) {
        return "0 {\"file\":\"p.pdf\",\"points\":" + std::to_string(points) + "," + names + "," + ranges + "}";
    };
    const char* const kBare = "\"x\":\"\",\"y\":[\"\"]";
    const char* const kNamed = "\"x\":\"mL\",\"y\":[\"pH\",\"mV\"]";
    for (const auto& [table, arguments, points, names, ranges] :
         Cases<const char*, const char*, int, const char*, const char*>{
             {"1,2\n3,7\n", "", 2, kBare, "\"xRange\":[1.0,3.0],\"yRange\":[2.0,7.0]"},
             {"Sample; A\nt,mL,pH,\"mV\"\n0,1,2,3\n1,2,,40\n\nnote,9,9,9", "-x mL -y pH -y mV", 2, kNamed,
              "\"xRange\":[1.0,2.0],\"yRange\":[0.0,40.0]"},
             {"\xEF\xBB\xBF"
              "mL;pH;mV\r\n1,5;+2,5;\"-1,5\"\r\n",
              "-y pH -y 3", 1, kNamed, "\"xRange\":[0.6,2.4],\"yRange\":[-1.5,2.5]"},
             {"mL,pH\n1,2\n,\n3,5\n,\nmean,3\n", "", 2, "\"x\":\"mL\",\"y\":[\"pH\"]",
              "\"xRange\":[1.0,3.0],\"yRange\":[2.0,5.0]"},
             {"1\t0\n2\t0\n", "--y-range 14:0 --bars --marks", 2, kBare, "\"xRange\":[1.0,2.0],\"yRange\":[14.0,0.0]"},
             {"-1e308,1e-320\n1e308,2e-320\n", "", 2, kBare, "\"xRange\":[-1e+308,1e+308],\"yRange\":[-1.0,1.0]"},
         })
        EXPECT_EQ(drawn(table, arguments), expected(points, names, ranges)) << table;
    for (const auto& [table, arguments, answer] : Cases<const char*, const char*, const char*>{
             {"mL,pH\n1,2\n", "-x mL -y mV", "1 qel: t.csv: no line has all of these columns\n"},
             {"mL,pH\n1,2\n", "-x mL -y 3", "2 qel: column 3: the table has 2 columns; see qel --help\n"},
             {"mL,pH\n1,\n", "", "1 qel: t.csv: column \"2\" has no numbers\n"},
             {"Day,pH\n,2\nMon,1\nTue,2\n", "", "1 qel: t.csv: column \"1\" has no numbers; line 3 has \"Mon\"\n"},
             {"", "", "1 qel: t.csv: column \"1\" has no numbers\n"},
             {"1,2\n", "--x-range 1:1", "2 qel: \"1:1\" is not a range such as 0:14; see qel --help\n"},
         }) {
        folder.Write("t.csv", table);
        EXPECT_EQ(folder.Qel("plot t.csv -o p.png " + std::string(arguments)), answer);
    }
    folder.Write("t.csv", "mL,pH\n0,3\n25,12\n");
    const std::string drawing = folder.Qel("plot t.csv -x mL -y pH -o p.pdf --force && pdftotext p.pdf -");
    for (const char* text : {"pH", "mL", "3\n", "12\n", "0\n", "25\n"})
        EXPECT_NE(drawing.find(text), std::string::npos) << drawing;
}

TEST(QelPlot, MakesCharts) {
    const QelFolder folder;
    const EnvironmentScope zone("TZ", "JST-9");
    folder.Write("t.csv",
                 "Volume [mL];pH;E (mV);u [mV]\n0,5;3;120;2\n5;n.a.;-1;\n50;9;300;-3\n\n60;9;300;3\nmean;9;300;3\n");
    folder.Write("time.csv", "t,y\n2026-11-28T23:30,1\n2026-11-29T00:10:00.5,2\n2026-02-30,3\n");
    folder.Write("utc.csv", "t,y\n2026-11-28T23:30Z,1\n2026-11-29T01:10+01:00,2\n");
    const char* const kBelow = "  1 line with numbers below the table not drawn, from line 6\n";
    const std::string both = "3 points, 2 curves\n  1 field without a number is not drawn\n";
    for (const auto& [arguments, answer, words] : Cases<std::string, std::string, std::vector<const char*>>{
             {"t.csv --chart -y 2 -y 3",
              both + kBelow,
              {">Volume (mL)<", ">pH<", "#c05806\" xml:space=\"preserve\">E (mV)<"}},
             {"t.csv --legend inside -y 3", std::string("3 points, 1 curve\n") + kBelow, {">E (mV)<", ">E<"}},
             {"t.csv --log xy -y 2 -y 3 --legend none",
              both + "  1 value is not above 0 and not drawn\n" + kBelow,
              {">10<", ">200<"}},
             {"t.csv --errors 4 -y 3",
              std::string("3 points, 1 curve\n  1 error is below 0 and not drawn\n") + kBelow,
              {">E (mV)<"}},
             {"t.csv --title A --subtitle B --limit 8:C:D --y-range 14:0 --x-range 0:60 --theme dark --steps",
              "3 points, 1 curve\n  1 field without a number is not drawn\n" + std::string(kBelow),
              {">A<", ">B<", ">C:D<", ">14<", ">60<"}},
             {"time.csv --points", "3 points, 1 curve\n  1 field without a number is not drawn\n", {"JST", ">23:30<"}},
             {"time.csv --utc", "3 points, 1 curve\n  1 field without a number is not drawn\n", {"UTC", ">23:30<"}},
             {"utc.csv --x-range 2026-11-28T23:00Z/2026-11-29T00:00Z --y-range 1.5:3",
              "2 points, 1 curve\n  2 values are outside of --x-range or --y-range\n",
              {"UTC"}},
             {"t.csv -y 2 -y 3 --break x=6..49 --break y2=400..125",
              both + "  1 point is in a break of an axis and not drawn\n" + kBelow,
              {">0<", ">60<", ">100<"}},
             {"time.csv --points --break x=2026-11-28T23:40..2026-11-29T00:05",
              "3 points, 1 curve\n  1 field without a number is not drawn\n",
              {">11-28 23:30<", ">11-29 00:05<"}},
             {"utc.csv --reverse-x --x-range 2026-11-28T23:00Z/2026-11-29T01:00Z",
              "2 points, 1 curve\n",
              {"UTC", ">23:00<"}},
         }) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(folder.Qel("plot -o p --format svg --force " + arguments), "0 p: " + answer);
        const std::string picture = folder.Read("p");
        for (const char* word : words) EXPECT_NE(picture.find(word), std::string::npos) << word;
    }
    for (const auto& [arguments, size] : Cases<const char*, std::pair<int, int>>{
             {"--size 801x500", {801, 500}}, {"--size 50x40mm", {295, 236}}, {"", {945, 591}}}) {
        folder.Qel(std::string("plot t.csv -o p.png --force --theme print ") + arguments);
        EXPECT_EQ(PngSize(folder.Read("p.png")), size) << arguments;
    }
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"--x-range 0:1 --chart", "--x-range: column \"1\" has times"},
             {"--break x=0..1", "--break x=0..1: column \"1\" has times"},
             {"--break y2=0..1", "--break y2=0..1: the chart has 1 axis upward"},
             {"--break y=2026-11-28..2026-11-29", "--break: times are across"},
             {"--break y=1..2 --log y", "--break: a logarithmic axis has none"},
             {"--break z=1..2", "\"z=1..2\" is not a break such as x=12..80"},
             {"--break x=1..1", "\"x=1..1\" is not a break such as x=12..80"},
         })
        EXPECT_EQ(folder.Qel("plot time.csv -o q.svg " + std::string(arguments)),
                  "2 qel: " + std::string(answer) + "; see qel --help\n");
}
