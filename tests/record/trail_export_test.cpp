#include "../support/cases.h"
#include "../support/output_of.h"
#include "trail_folder.h"

namespace {

class Export : public testing::Test, public TrailFolder {
public:
    std::string Run(const std::string& commands) const {
        return OutputOf("cd '" + Posix().native() + "' && export Q=" QELLIB10_QEL " && { " + commands + "; } 2>&1");
    }
};

}  // namespace

// The second entry has what a spreadsheet would carry out, the third what a terminal would.
TEST_F(Export, FilesAreSafeToOpenAndHaveEveryEntry) {
    qel::Trail trail(Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    qel::TrailRecord record = Record("logon", "=1+\"2\"");
    ASSERT_TRUE(trail.Append(record));
    record = Record("own", "'a\xE2\x80\xAE\x1B[31mb");
    record.before = std::string(3000, 'x');
    record.reason = "because\r\nso";
    ASSERT_TRUE(trail.Append(record));
    Write("t", Read("t") + "{\"format\":1,");
    for (const auto& [command, output] : Cases<const char*, const char*>{
             {"$Q trail export t --to a.csv --head-file h", "a.csv: 3 entries: consistent\n"},
             {"cut -d, -f2,11,12,15 a.csv | tr -d '\\r'",
              "\"number\",\"action\",\"object\",\"reason\"\n2,\"logon\",\"'=1+\"\"2\"\"\",\"\"\n"
              "3,\"own\",\"''a????[31mb\",\"because??so\"\n"},
             {"$Q trail export t --to a.csv", "qel: a.csv: exists; --force replaces it\n"},
             {"$Q trail export t --to a",
              "qel: \"a\" ends with neither .txt, .json, .csv nor .pdf; give --format; see qel "
              "--help\n"},
             {"$Q trail export t --to a --format text >/dev/null; echo $?; tail -2 a | tr -d x",
              "7\n3 ID mori: own 'a????[31mb:  ->  (because??so)\nend of report\n"},
             {"$Q trail export t --to a.json --head-file h && grep -o '\"object\":\"=1[^,]*' a.json && tail -1 a.json",
              "a.json: 3 entries: consistent\n\"object\":\"=1+\\\"2\\\"\"\n]}\n"},
             {"$Q trail export t --to a.PDF --head-file h && pdftotext -layout a.PDF - | grep -oE "
              "'3 entries: consistent|page 1 of 1|end of report|[0-9]+ more bytes|31mb'",
              "a.PDF: 3 entries: consistent\n3 entries: consistent\n31mb\n2284 more bytes\nend of report\npage 1 of "
              "1\n"},
             {"sed 2d t >g; $Q trail export g --to g.csv; grep -c . g.csv", "g.csv: 3 entries: 3 findings\n3\n"},
             {"sed -i s/mori/abe/ t; $Q trail export t --to b.csv --head-file h; echo $?",
              "b.csv: 3 entries: 5 findings\n15\n"},
         }) {
        const std::string found = Run(std::string(command) + " | grep -v started | sed -E 's/3 2026[^ ]*/3 ID/'");
        EXPECT_EQ(found, output) << command;
    }
}
