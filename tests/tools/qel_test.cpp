#include <gtest/gtest.h>

#include <sstream>

#include "../support/archive_bytes.h"
#include "../support/cases.h"
#include "../support/output_of.h"
#include "../support/registry_scope.h"
#include "qel_folder.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/secure/history_renew_info.h"

TEST(Qel, BadUsageIsOneLineAndStatus2) {
    const RegistryScope registry;
    const QelFolder folder;
    folder.Write("f.xml", "<Method><Unit>mL</Unit></Method>");
    folder.Write("f.ini", "[Window]\r\nWidth=640\r\n");
    folder.Write("f.pdf", "1,2\n");
    ASSERT_EQ(folder.Qel("cabinet add f.hcf f.xml >/dev/null"), "0 ");
    const auto contents = [&] { return ResultOf("cd '" + folder.Posix().native() + "' && ls && cat *"); };
    const std::string before = contents();
    for (const char* arguments : {"",
                                  "other",
                                  "calc",
                                  "calc A B",
                                  "calc A B=x",
                                  "calc A =1",
                                  "calc 1 --digits 16",
                                  "calc 1 --digits 1 --check",
                                  "calc ''",
                                  "calc é é=1",  // would be an e in this code page
                                  "seal",
                                  "seal f.pdf ''",
                                  "verify",
                                  "verify . -j 0",
                                  "verify . --save-list a",
                                  "verify . --resume a",
                                  "verify . --resume ../a --against ../b",
                                  "verify f.xml --save-list ../a",
                                  "cabinet",
                                  "cabinet list",
                                  "cabinet extract a",
                                  "cabinet extract f.hcf a --version 0x1",
                                  "calc 1 --digits 16",
                                  "cabinet extract f.hcf a --version 0",
                                  "cabinet extract f.hcf a --version 2",
                                  "cabinet extract f.hcf f.hcf --force",
                                  "cabinet add f.hcf ./f.hcf",
                                  "cabinet salvage f.hcf",
                                  "cabinet salvage f.hcf --to ''",
                                  "xml get a",
                                  "xml get f.xml '['",
                                  "xml get f.xml Unit --xml --count",
                                  "xml set f.xml '[' x",
                                  "xml set f.xml ../A x",
                                  "xml set f.xml Unit é",
                                  "xml encipher f.xml f.xml --force",
                                  "archive",
                                  "archive a b",
                                  "renewals",
                                  "profile set a b c",
                                  "profile set a b c x --number",
                                  "profile set f.ini Window '' x",
                                  "profile set f.ini Window ' ' x",
                                  "profile set f.ini ' ' A x",
                                  "profile set f.ini Window ' ;A' x",
                                  "profile set f.ini Window A=B x",
                                  "profile set f.ini Window A \"$(printf 'x\\nB=2')\"",
                                  "profile backup f.ini .bak",
                                  "profile restore f.ini .bak",
                                  "profile backup 'HKEY_CURRENT_USER\\M' ''",
                                  "profile list HKEY_CURRENT_USER",
                                  "profile set 'HKEY_USERS\\M' A B x",
                                  "trail",
                                  "trail verify",
                                  "trail show f.xml 01",
                                  "trail export f.xml --to a.doc",
                                  "trail export f.xml --to a --format xml",
                                  "trail verify f.xml --at-least 0",
                                  "trail verify f.xml --at-least 1 --at-least 1",
                                  "trail verify f.xml --key SHA256:a",
                                  "trail verify f.xml --key SHA256:a --key SHA256:a",
                                  "trail verify f.xml --trust f.xml --trust f.xml",
                                  "trail verify f.xml --head 0",
                                  "trail verify f.xml --trail 0123456789ABCDEF0123456789ABCDEF",
                                  "trail verify f.xml --stamp f.xml",
                                  "stamp f.xml",
                                  "stamp f.xml --request q --entry 0",
                                  "stamp f.xml --request q --answer a --entry 1",
                                  "stamp f.xml --request q --answer a --head-file h --signer-key k",
                                  "stamp f.xml --request q --answer a --head-file h --tsa-ca c",
                                  "stamp f.xml --request q --user u",
                                  "trail verify f.xml --approvals x",
                                  "key make k --user mori",
                                  "key show",
                                  "key password f.xml --person k --user mori --head-file h",
                                  "key make k --user mori --name Mori secret",
                                  "key end f.xml --person k --user mori --by kato --reason left --head-file h",
                                  "key revoke-installation f.xml --public-key p --by kato --reason stolen "
                                  "--head-file h --signer-key s",
                                  "sign f.xml --cabinet f --version 1 --meaning author --person k --user mori "
                                  "--head-file h",
                                  "plot f.pdf -o f.pdf --force",
                                  "plot f.pdf -o a.png --size 10000x10000",
                                  "plot f.pdf -o a.svg --size 10000x10000",
                                  "plot f.pdf -o a.png -x 0",
                                  "plot f.pdf -o a.png -y 3",
                                  "plot f.pdf -o a.png -y 99999999999999999999",
                                  "plot none -o a.png --x-range 1",
                                  "plot f.pdf -o a.png --theme pink",
                                  "plot f.pdf -o a.png --log z",
                                  "plot f.pdf -o a.png --legend left",
                                  "plot f.pdf -o a.png --errors 2 --errors 3",
                                  "plot f.pdf -o a.png --format gif",
                                  "plot f.pdf -o a.png --format svg",
                                  "plot f.pdf -o a.pdf --chart --size 800x500px",
                                  "plot f.pdf -o a.png --chart --size 800.5x500",
                                  "plot f.pdf -o a.png --limit upper",
                                  "plot f.pdf -o a.png --limit 0 --log y",
                                  "plot f.pdf -o a.png --log x --x-range 0:1",
                                  "plot f.pdf -o a.png --chart --x-range 2026-02-30/2026-03-01",
                                  "plot f.pdf -o a.png --bars --steps",
                                  "verify . --other",
                                  "--codepage 1 verify ."}) {
        SCOPED_TRACE(arguments);
        const std::string answer = folder.Qel(arguments);
        EXPECT_TRUE(answer.starts_with("2 qel: ")) << answer;
        EXPECT_EQ(answer.find('\n'), answer.size() - 1) << answer;
    }
    EXPECT_EQ(contents(), before) << "nothing is written";
    EXPECT_EQ(folder.Qel("cabinet lst f.hcf"), "2 qel: \"lst\" is not known; see qel --help\n");
    EXPECT_EQ(ResultOf("QELLIB10_CODEPAGE=7 " QELLIB10_QEL " calc 1").substr(0, 2), "2 ");
    for (const char* command : {"", "calc", "seal", "verify", "cabinet add", "xml", "archive", "profile get"})
        EXPECT_TRUE(folder.Qel(command + std::string(" --help")).starts_with("0 ")) << command;
    EXPECT_EQ(folder.Qel("calc 1 >/dev/full").substr(0, 1), "1");
}

// Both follow the help of the program, which is written in one place.
TEST(Qel, ManPageAndCompletionKnowEveryOption) {
    const QelFolder folder;
    const std::string sources = "cd " QELLIB10_QEL_SOURCE " && PATH=$(dirname " QELLIB10_QEL "):$PATH && ";
    const std::string complete = sources +
                                 "bash -c 'source ./qel.bash; COMP_WORDS=(\"$@\"); COMP_CWORD=$#; "
                                 "((COMP_CWORD--)); _qel; echo ${COMPREPLY[@]}' - qel ";
    const std::string page = ResultOf(sources + "sed 's/\\\\f[BIR]//g; s/\\\\-/-/g' qel.1");
    const auto synopsisOf = [&](const std::string& command) {
        std::string lines;
        const std::string start = "\nqel " + command + ' ';
        for (std::size_t at = page.find(start); at != std::string::npos; at = page.find(start, at + 1))
            lines += page.substr(at, page.find('\n', at + 1) - at);
        return lines;
    };
    for (const auto& [path, choices] : Cases<std::string, std::string>{
             {"", "0 calc seal verify cabinet xml job archive renewals profile plot selftest trail stamp sign key\n"},
             {"calc --",
              "0 --help --from --digits --check --json --exact --name --unit --define --round --substitute "
              "--coverage --k --correlation --lower --upper --decision --unrounded --trials --seed --kept --trace "
              "--write-trace "
              "--steps "
              "--language\n"},
             {"seal --", "0 --help --new --after --json\n"},
             {"verify --",
              "0 --help --jobs --all --strict --sealed --resume --save-list --against --force --trust --key --trail "
              "--head "
              "--head-file --at-least --tsa-ca --stamp --before --signatures --approvals --approval-needs-review "
              "--author-may-approve --json\n"},
             {"--codepage 932 cabinet ", "0 list extract add salvage\n"},
             {"cabinet extract --", "0 --help --version --force\n"},
             {"cabinet add --", "0 --help --json\n"},
             {"cabinet salvage --", "0 --help --to --json\n"},
             {"xml get --", "0 --help --xml --count --json\n"},
             {"job render --", "0 --help --output --resolution --force --page --paper --dpi --json\n"},
             {"archive --", "0 --help --oldest --json\n"},
             {"renewals --", "0 --help --trail --cabinet --json\n"},
             {"profile set --", "0 --help --number\n"},
             {"trail list --", "0 --help --json\n"},
             {"trail show --", "0 --help --json\n"},
             {"trail export --",
              "0 --help --to --format --force --trust --key --trail --head --head-file --at-least --tsa-ca --stamp\n"},
             {"trail verify --",
              "0 --help --trust --key --trail --head --head-file --at-least --tsa-ca --stamp --archive "
              "--before --jobs --resume --signatures --approvals --approval-needs-review --author-may-approve "
              "--json\n"},
             {"stamp --",
              "0 --help --request --entry --answer --tsa-ca --head-file --agent --key --signer-key --user --force "
              "--json\n"},
             {"sign --",
              "0 --help --cabinet --version --meaning --person --user --head-file --agent --key --signer-key --report "
              "--approvals --approval-needs-review --author-may-approve --password-fd --json\n"},
             {"key make --", "0 --help --user --name --password-fd --json\n"},
             {"key show --", "0 --help --json\n"},
             {"key password --",
              "0 --help --head-file --agent --key --signer-key --json --person --user --password-fd\n"},
             {"key ", "0 make show add reset end password add-installation end-installation revoke-installation\n"},
             {"key reset --",
              "0 --help --head-file --agent --key --signer-key --json --person --user --name --password-fd --by "
              "--reason\n"},
             {"key end --", "0 --help --head-file --agent --key --signer-key --json --person --user --by --reason\n"},
             {"key revoke-installation --",
              "0 --help --head-file --agent --key --signer-key --json --by --reason --public-key --from\n"},
             {"plot --",
              "0 --help --x-range --y-range --size --bars --marks --output --resolution --force --json --chart --theme "
              "--log --legend --errors --format --title --subtitle --limit --break --steps --points --reverse-x "
              "--utc\n"},
             {"plot --theme ", "0 light dark print\n"},
             {"verify x", "0 \n"},
         }) {
        EXPECT_EQ(ResultOf(complete + path + (path.empty() || path.back() == ' ' ? "''" : "")), choices) << path;
        if (!path.ends_with(" --")) continue;
        const std::string synopsis = synopsisOf(path.substr(0, path.size() - 3));
        std::istringstream options(choices.substr(2));
        for (std::string option; options >> option;)
            EXPECT_TRUE(option == "--help" || synopsis.find(option) != std::string::npos) << option << synopsis;
    }
}

TEST(Qel, CalcChecksAndComputes) {
    const QelFolder folder;
    CCalcVariableList list;
    CCalcVariable variable;
    variable.m_szName = "\x95\\";  // a double-byte name that ends with a backslash
    variable.m_dValue = 2.5;
    list.AddVariableData(variable);
    folder.Write("list.var", Stored(list));
    list.SetRoundUpFlag(1);
    folder.Write("rounded.var", Stored(list));
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"'(EP - BLANK) * 0.1 / sample' EP=16.519 BLANK=0.03 SAMPLE=2 --digits 3", "0 0.824\n"},
             {"A*2 A=1e300", "0 2e+300\n"},
             {"-- -X*2 X=3", "0 -6\n"},
             {"--check A+B A=1 B=2 C=3", "0 A                1\nB                2\n"},
             {"表*2 --from list.var", "0 5\n"},
             {"表*2 --from list.var 表=4", "0 8\n"},
             {"A+B A=1", "1 qel: the formula names \"B\", which has no value\n"},
             {"1/A A=0", "1 qel: the formula divides by zero at byte 2: \"/A\"\n"},
             {"A*10 A=1e308", "1 qel: the result is too large\n"},
             {"1 --from \"$(printf 'a\\033b\\302\\233c\\377.')\"", "5 qel: a?b??c?.: file not found\n"},
             {"1++", "1 qel: the formula is not valid at byte 3: \"+\"\n"},
             {"1 --from qel-none", "5 qel: qel-none: file not found\n"},
             {"1 --from .", "5 qel: .: is a folder\n"},
         })
        EXPECT_EQ(folder.Qel("calc " + std::string(arguments)), answer);
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"--exact 'A / 3 + min(A, 1)' A=1", "0 1.333333333333333333333333333333333 (inexact)\n"},
             {"--exact '(EP - BLANK) * T' 'EP=16.52 ; rect=0.03' BLANK=0.02 'T=0.1;u=1e-4' --round 'half even, 2 "
              "digits of "
              "the uncertainty'",
              "0 1.6500 ± 0.0048 (k = 2)\n"},
             {"--exact 'A - B' A=2 'B=< 0.5' --round 'truncation, 0 decimal places'", "0 > 1\n"},
             {"--exact 'T * 2' --define 'T=V/4' V=1", "0 0.50\n"},
             {"--exact --kept '2*' V=1", "0 0\n"},
             {"--exact A 'A=10.04; u=0.01' --round 'half even, 1 decimal places' --upper 10.0",
              "0 10.0 ± 0.020 (k = 2)\npassed"},
             {"--exact A 'A=10.04; u=0.01' --round 'half even, 1 decimal places' --upper 10.0 --unrounded",
              "0 10.0 ± 0.020 (k = 2)\nnot passed\n"},
             {"--exact A 'A=9.99; u=0.01' --upper 10.0 --decision 'guarded acceptance, w = 1 U'",
              "0 9.99 ± 0.020 (k = 2)\nnot passed, the uncertainty reaches over a limit\n"},
             {"--exact A^2 'A=0; u=1' --trials 10000", "0 0 ± 0 (k = 2)\nfirst order is not enough"},
             {"--exact A A=1 --upper 2 --decision x", "2 qel: --decision: \"x\" is no rule: simple acceptance"},
             {"--exact 'A +' A=1",
              "1 qel: RESULT: the formula is not valid at its end: a number, a name or an opening bracket is "
              "expected\n"},
             {"--exact A 'A=1; v=2'",
              "2 qel: \"v=2\" is not known: there are u, rect, tri, cert, s, source and from; see qel --help\n"},
             {"--exact A A=1e",
              "2 qel: \"1e\" is no value: a number, < or > with a number, missing or invalid; see qel "
              "--help\n"},
             {"--exact A 'A=1; u=-1'", "0 1 ± 2.0 (k = 2)\n"},
             {"--exact A 'A=1; u=--1'", "2 qel: \"u=--1\" is no uncertainty"},
             {"--exact A 'A=1; u=0.1; source=B'", "2 qel: \"source=B\" has no uncertainty after it"},
             {"--exact A 'A=1; u=0.1' --k 0", "2 qel: --k: a coverage factor is a number above 0"},
             {"--exact A+B 'a=1; u=0.1' 'B=1; u=0.1' --k 2 --correlation A,b,1", "0 2 ± 0.40 (k = 2)\n"},
             {"--exact A+B 'A=1; u=0.1' B=1 --k 2 --correlation A,B,1",
              "2 qel: \"B\" has no uncertainty, so it has no correlation coefficient; see qel --help\n"},
             {"--exact 'const.R*T' T=298.15 --unit kJ/mol", "1 qel: RESULT: the units do not go together"},
             {"--round x A A=1", "2 qel: --round requires --exact; see qel --help\n"},
             {"--exact 表/3 --from list.var", "0 0.8333333333333333333333333333333333 (inexact)\n"},
             {"--exact 表*B --from list.var 表=4 B=2", "0 8\n"},
             {"--exact 表 --from rounded.var", "2 qel: --from: the list rounds its values"},
             {"1+1 --steps", "2 qel: --steps requires --exact or --trace"},
             {"--exact A A=1 --digits 2", "2 qel: --digits excludes --exact"},
             {"--exact A A=1 --unrounded", "2 qel: --unrounded requires --lower or --upper"},
             {"--exact A 'A=1;u=1' --coverage nan", "2 qel: --coverage: a probability is between 0 and 1"},
             {"--exact A 'A=1;u=1' --k inf", "2 qel: --k: a coverage factor is a number above 0"},
             {"--exact A A=1 --coverage 0.9", "2 qel: --coverage: no value has an uncertainty"},
             {"--trace list.var", "3 qel: list.var: "},
         })
        EXPECT_EQ(folder.Qel("calc " + std::string(arguments)).substr(0, std::string(answer).size()), answer);
    EXPECT_EQ(
        folder.Qel("calc --exact H-G+1 --define H=A --define G=B 'A=1; u=0.1' 'B=1; u=0.1' --k 2 --correlation A,B,1 "
                   "--trials 10000 --seed 7 --write-trace tried.json"),
        "0 1 ± 0 (k = 2)\nfirst order is enough\n");
    EXPECT_EQ(folder.Qel("calc --trace tried.json"), "0 1 ± 0 (k = 2)\nfirst order is enough\n");
    EXPECT_EQ(folder.Qel("calc --exact 'A / 7' A=1 --write-trace one.json")[0], '0');
    EXPECT_EQ(folder.Qel("calc --trace one.json --steps")[0], '0');
    std::string trace = folder.Read("one.json");
    trace.replace(trace.find("0.142857"), 8, "0.142858");
    folder.Write("one.json", trace);
    EXPECT_EQ(folder.Qel("calc --trace one.json")[0], '6');
    EXPECT_EQ(folder.Qel("archive list.var"), "0 表              2.5\n");
    EXPECT_TRUE(folder.Qel("archive list.var --json").find("\"name\": \"表\"") != std::string::npos);
    EXPECT_EQ(folder.Qel("archive list.var --oldest"), "3 qel: list.var: has a head, it is of a newer layout\n");
    folder.Write("oldest.var", "\1" + std::string(3, '\0'));
    EXPECT_EQ(folder.Qel("archive oldest.var --oldest")[0], '7');
    folder.Write("oldest.var", "\1" + std::string(3, '\0') + "\2no\1x");
    EXPECT_EQ(folder.Qel("archive oldest.var --oldest"), "8 qel: oldest.var: of 1 variables 0 can be read\n");
}

TEST(Qel, ListsWhoRenewedADocument) {
    const QelFolder folder;
    CHistoryRenewInfo record;
    record.SetFileName("m.xml");
    record.SetOperator("mori");
    record.SetComment("blank\r\n\x1B[2Jraised");
    const std::string first = Stored(record);
    record.SetOperator("");
    record.SetRenewDateTime(COleDateTime(2026, 2, 3, 4, 5, 6));
    folder.Write("r", first + Stored(record));
    const std::string line = "0 version 1, 2001-01-01T00:00:00, by mori: m.xml (blank???[2Jraised)\n";
    EXPECT_EQ(folder.Qel("renewals r"),
              line + "version 2, 2026-02-03T04:05:06, by nobody known: m.xml (blank???[2Jraised)\n");
    EXPECT_EQ(folder.Qel("renewals r --json | grep -c '\"comment\": \"blank.r.n.u001b\\[2Jraised\"'"), "0 2\n");
    folder.Write("r", first + Stored(record).substr(0, 40));
    EXPECT_EQ(folder.Qel("renewals r 2>&1 >/dev/null"),
              "7 qel: r: ends within a record at byte " + std::to_string(first.size()) + "\n");
    folder.Write("r", first + "something else, that is no record at all");
    EXPECT_EQ(folder.Qel("renewals r 2>/dev/null"), "8" + line.substr(1));
    folder.Write("r", "something else");
    EXPECT_EQ(folder.Qel("renewals r"), "3 qel: r: has no renewal records\n");
}

TEST(Qel, VerifyComparesATreeWithItsListOfBefore) {
    const QelFolder folder;
    std::filesystem::create_directories(folder.Posix("t/sub"));
    folder.Write("t/a b%\xC3\xA9\n", "odd");
    folder.Write("t/sealed", "data");
    folder.Write("t/sub/c", "");
    ASSERT_EQ(folder.Qel("seal t/sealed >/dev/null && " QELLIB10_QEL " verify t --save-list l"),
              "0 3 files: 1 intact, 2 unknown\n");
    EXPECT_EQ(folder.Qel("verify t --against l --sealed 'seal*' --sealed 'sub/x'"), "0 3 files: 1 intact, 2 unknown\n");
    const std::string list = folder.Read("l");
    EXPECT_EQ(ResultOf("cd '" + folder.Posix().native() + "' && sed 's/^[0-9a-f]\\{64\\}/SUM/' l"),
              "0 qel-file-list 1\nSUM 3 data a%20b%25%C3%A9%0A\nSUM 47 sealed-data sealed\nSUM 0 data sub/c\nend 3\n");
    EXPECT_EQ(folder.Qel("verify t --save-list l"), "1 qel: l: exists; --force replaces it\n");
    folder.Write("t/new", "");
    EXPECT_EQ(folder.Qel("verify t --against l --sealed 'sub/?'"),
              "23 t/new: added: is not in the list\nt/sub/c: not sealed: has to be sealed\n"
              "4 files: 1 intact, 1 unknown, 1 added, 1 not sealed\n");
    std::filesystem::remove(folder.Posix("t/new"));
    std::filesystem::create_symlink("sealed", folder.Posix("t/link"));
    EXPECT_EQ(folder.Qel("--version >/dev/null; mkfifo t/pipe; " QELLIB10_QEL " verify t --save-list m; " QELLIB10_QEL
                         " verify t --against m; " QELLIB10_QEL " verify t --against l"),
              "22 5 files: 3 intact, 2 unknown\n5 files: 3 intact, 2 unknown\n"
              "t/link: added, link: is not in the list\nt/pipe: added, pipe: is not in the list\n"
              "5 files: 1 intact, 2 unknown, 2 added\n");
    ASSERT_EQ(folder.Qel("--version >/dev/null; rm t/pipe t/link; touch t/pipe; ln -s x t/link; " QELLIB10_QEL
                         " verify t --against m >/dev/null; rm t/pipe t/link"),
              "0 ");
    std::filesystem::remove(folder.Posix("t/sub/c"));
    EXPECT_EQ(
        folder.Qel("seal t/sealed >/dev/null && " QELLIB10_QEL " verify t --against l"),
        "15 t/sealed: changed, sealed data: is not what the list has\nt/sub/c: missing: is in the list, and not there\n"
        "3 files: 1 unknown, 1 changed, 1 missing\n");
    for (const auto& [what, text, answer] : Cases<const char*, std::string, const char*>{
             {"cut", list.substr(0, list.size() - 6), "7 qel: l: line 4: the list ends too early\n"},
             {"half a line", list.substr(0, list.size() - 8), "7 qel: l: line 3: the list ends too early\n"},
             {"an order", list.substr(0, 16) + list.substr(list.find('\n', 16) + 1),
              "9 qel: l: line 4: not one of such a list\n"},
             {"more", list + "x", "9 qel: l: line 5: not one of such a list\n"},
             {"a zero byte", list.substr(0, list.size() - 1) + std::string("\0\n", 2),
              "9 qel: l: line 5: not one of such a list\n"},
             {"a long line", "qel-file-list 1\n" + std::string(20'000, '0'),
              "7 qel: l: line 1: the list ends too early\n"},
             {"none", "", "9 qel: l: line 1: not one of such a list\n"}}) {
        folder.Write("l", text);
        EXPECT_EQ(folder.Qel("verify t --against l"), answer) << what;
    }
}

// A file counts as read while its inode is the same, and only by a line that the same program has written.
TEST(Qel, VerifyGoesOnWithAnInterruptedRun) {
    const QelFolder folder;
    std::filesystem::create_directory(folder.Posix("t"));
    for (const char* name : {"t/a", "t/b"}) folder.Write(name, "data");
    ASSERT_EQ(folder.Qel("seal t/a t/b >/dev/null")[0], '0');
    // Until the system's clock for files has moved, a file that was just made is read again.
    for (int i = 0; i < 1000 && folder.Qel("verify t --resume r").starts_with("0 "); ++i) {
    }
    const std::string kept = folder.Read("r");
    EXPECT_EQ(folder.Qel("verify t --resume r"), "24 2 files: 2 intact, 2 not read again\n");
    folder.Write("t/a", "x" + folder.Read("t/a").substr(1));
    ASSERT_EQ(folder.Qel("verify t --resume r | tail -1"), "0 2 files: 1 intact, 1 changed, 1 not read again\n");
    EXPECT_EQ(folder.Qel("verify t --resume r >/dev/null"), "6 ") << "what is wrong is read again";
    EXPECT_EQ(folder.Qel("verify t --resume r --sealed c >/dev/null"), "6 ");
    for (const auto& [what, change, passed] : Cases<const char*, const char*, const char*>{
             {"nothing", "true", "1 changed, 1 not read again"},
             {"torn", "printf 'half a line' >>r", "1 changed, 1 not read again"},
             {"another inode", "sed -Ei 's/^([0-9a-f]{64} content [0-9]+ )/\\11/' r", "1 changed"},
             {"another key", "sed -i '1s/.$/x/' r", "1 changed"},
             {"others may read it", "chmod 640 r", "mode 0600)"},
             {"a link", "mv r s; ln -s s r", "symbolic links"},
             {"something else", "rm r; echo text >r; chmod 600 r", "was not made by --resume"}}) {
        std::filesystem::remove(folder.Posix("r"));
        folder.Write("r", kept);
        const std::string found = folder.Qel("--version >/dev/null; chmod 600 r; " + std::string(change) +
                                             "; " QELLIB10_QEL " verify t --resume r 2>&1");
        EXPECT_EQ(found.substr(found.size() - std::min(found.size(), std::string(passed).size() + 1)),
                  std::string(passed) + '\n')
            << what << found;
    }
}

TEST(Qel, SealsCountUpAndAreRefusedForChangedFiles) {
    const QelFolder folder;
    for (const char* name : {"a", "b", "c"}) folder.Write(name, "data");
    EXPECT_TRUE(folder.Qel("seal a").starts_with("0 a: sealed as version 1 of "));
    EXPECT_TRUE(folder.Qel("seal a b").ends_with("0") == false);
    EXPECT_TRUE(folder.Qel("verify a").find("version 2 of") != std::string::npos);
    EXPECT_EQ(folder.Qel("seal --new a"), "1 qel: a: is sealed already\n");
    EXPECT_TRUE(folder.Qel("seal --after a c").starts_with("0 c: sealed as version 3 of "));
    folder.Write("a", "x" + folder.Read("a").substr(1));
    const std::string before = folder.Read("a");
    EXPECT_TRUE(folder.Qel("seal a b").starts_with("6 ")) << "a changed file gets no new seal";
    EXPECT_EQ(folder.Read("a"), before);
    EXPECT_TRUE(folder.Qel("verify b").find("version 2 of") != std::string::npos) << "the others do";
    std::filesystem::rename(folder.Posix("b"), folder.Posix("d"));
    EXPECT_TRUE(folder.Qel("seal d").starts_with("4 qel: d: is renamed, "));
}

TEST(Qel, KeepsVersionsInACabinet) {
    const QelFolder folder;
    for (const char* text : {"first", "second"}) {
        folder.Write("document", text);
        EXPECT_EQ(folder.Qel("cabinet add c.hcf document")[0], '0');
    }
    EXPECT_TRUE(folder.Qel("cabinet list c.hcf").ends_with("}\nversion 1, 5 bytes\nversion 2, 6 bytes\n"));
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf document"), "1 qel: document: exists; --force replaces it\n");
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf document --force --version 01; cat document"), "0 first");
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf latest; cat latest"), "0 second");
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf x --version 3"),
              "2 qel: --version: c.hcf has 2 versions; see qel --help\n");
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf x --version 010"),  // not eight
              "2 qel: --version: c.hcf has 2 versions; see qel --help\n");
    EXPECT_EQ(folder.Qel("cabinet add third.hcf document --json | sed 's/{.*}/GUID/' | tr -d ' \\n'"),
              "0 {\"file\":\"third.hcf\",\"version\":1,\"guid\":\"GUID\"}");
    EXPECT_EQ(folder.Qel("cabinet add new.hcf missing")[0], '5');
    EXPECT_FALSE(folder.Has("new.hcf"));
    EXPECT_EQ(folder.Qel("cabinet add none/new.hcf document"), "5 qel: none/new.hcf: there is no such folder\n");
    std::string bytes = folder.Read("c.hcf");
    bytes[36 + 20] ^= 1;
    folder.Write("c.hcf", bytes.substr(0, bytes.size() - 1));
    EXPECT_EQ(folder.Qel("cabinet list c.hcf 2>/dev/null | tail -1"), "0 version 1, 5 bytes, changed\n");
    EXPECT_EQ(folder.Qel("cabinet list c.hcf >/dev/null"), "7 qel: c.hcf: end of file\n");
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf latest --version 1 --force; cat latest"),
              "0 qel: c.hcf: version 1 is damaged; latest stays as it was\nsecond");
    EXPECT_EQ(folder.Qel("cabinet extract c.hcf found --version 1"),
              "6 qel: c.hcf: version 1 is damaged; found has what was found of it\n");
}

// The version in the middle is damaged, then the header of the cabinet as well.
TEST(Qel, SalvagesADamagedCabinet) {
    const QelFolder folder;
    for (const char* text : {"first", "second", "third"}) {
        folder.Write("document", text);
        ASSERT_EQ(folder.Qel("cabinet add c.hcf document")[0], '0');
    }
    EXPECT_EQ(folder.Qel("cabinet salvage c.hcf --to all/ | tail -1; cat all/*"),
              "0 3 versions taken out\nfirstsecondthird");
    std::string bytes = folder.Read("c.hcf");
    bytes[36 + 25 + 20] ^= 1;
    folder.Write("c.hcf", bytes);
    EXPECT_EQ(folder.Qel("cabinet salvage c.hcf --to found/"),
              "6 c.hcf: version 1, byte 36, 5 bytes: whole, now in found/version-1\n"
              "c.hcf: version 2, byte 61, 6 bytes: changed: does not match its checksums\n"
              "c.hcf: version 3, byte 87, 5 bytes: whole, now in found/version-3\n2 versions taken out\n");
    EXPECT_EQ(folder.Qel("cabinet salvage c.hcf --to new.hcf | tail -2; cat found/*"),
              "0 c.hcf: version 3, byte 87, 5 bytes: whole: not taken out, as a version before it is missing\n"
              "1 version taken out\nfirstthird");
    EXPECT_EQ(folder.Qel("cabinet salvage c.hcf --to new.hcf"), "1 qel: new.hcf: exists\n");
    EXPECT_NE(folder.Qel("cabinet salvage c.hcf --to found").find("found/version-1: exists"), std::string::npos);
    bytes[0] = 'X';
    folder.Write("c.hcf", bytes);
    EXPECT_EQ(folder.Qel("cabinet salvage c.hcf --to again.hcf | grep -A1 header"),
              "0 c.hcf: its header is damaged\n1 version taken out\n");
    EXPECT_EQ(folder.Qel("cabinet salvage c.hcf --to third.hcf --json >/dev/null"), "10 ");
    EXPECT_EQ(folder.Read("again.hcf"), folder.Read("new.hcf")) << "with the same identity";
    EXPECT_EQ(folder.Read("c.hcf"), bytes);
}

TEST(Qel, MakesACabinetWhereALinkLeadsAndCleansUpAfterKilledOnes) {
    const QelFolder folder;
    folder.Write("document", "text");
    folder.Write("killed.hcf.E100.tmp", "left");
    std::filesystem::create_directories(folder.Posix("real/sub"));
    std::filesystem::create_directory_symlink("real/sub", folder.Posix("link"));
    std::filesystem::create_symlink("../target.hcf", folder.Posix("real/sub/c.hcf"));
    for (const auto& [cabinet, made] : Cases<const char*, const char*>{
             {"link/c.hcf", "real/target.hcf"}, {"killed.hcf", "killed.hcf"}, {"new.hcf", "new.hcf"}}) {
        EXPECT_EQ(folder.Qel("cabinet add " + std::string(cabinet) + " document"), "0 version 1\n");
        EXPECT_EQ(folder.Read(made).size(), 60U) << made;
    }
    EXPECT_EQ(folder.Qel("--version >/dev/null; find . | grep -c tmp"), "1 0\n");
}

// The first is still reading its document when the second has finished.
TEST(Qel, TwoThatMakeACabinetAtOnceBothAddTheirVersion) {
    const QelFolder folder;
    folder.Write("document", "text");
    folder.Qel(
        "--version; truncate -s 100M huge; (" QELLIB10_QEL
        " cabinet add c.hcf huge) & for i in $(seq 500); do ls c.hcf.*.tmp && break; sleep 0.01; done; " QELLIB10_QEL
        " cabinet add c.hcf document; wait");
    EXPECT_TRUE(folder.Qel("cabinet list c.hcf").ends_with("version 1, 4 bytes\nversion 2, 104857600 bytes\n"));
}

TEST(Qel, AFailedCommandLeavesEveryFileAsItWas) {
    const QelFolder folder;
    folder.Write("plain.xml", "<Method><Unit>" + std::string(5000, 'x') + "</Unit></Method>");
    folder.Write("sealed.xml", "<Method><Unit>mL</Unit></Method>");
    ASSERT_EQ(
        folder.Qel("cabinet add c.hcf plain.xml >/dev/null && " QELLIB10_QEL " xml encipher plain.xml e.xml && cp "
                   "c.hcf sealed.hcf && " QELLIB10_QEL " seal sealed.hcf sealed.xml >/dev/null"),
        "0 ");
    folder.Write("old", "old");
    const auto contents = [&] { return ResultOf("cd '" + folder.Posix().native() + "' && ls && cat *"); };
    const std::string before = contents();
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"cabinet extract c.hcf old --force", "1 qel: old: "},
             {"cabinet extract c.hcf new", "1 qel: new: "},
             {"xml decipher e.xml old --force", "1 qel: old: "},
             {"xml encipher plain.xml new", "1 qel: new: "},
             {"cabinet add sealed.hcf old", "1 qel: sealed.hcf: is sealed, a change would cut its seal off\n"},
             {"xml set sealed.xml Unit L", "1 qel: sealed.xml: is sealed, a change would cut its seal off\n"},
         }) {
        const std::string given = ResultOf("cd '" + folder.Posix().native() +
                                           "' && trap '' XFSZ && ulimit -f 4 && " QELLIB10_QEL " " + arguments);
        EXPECT_TRUE(given.starts_with(answer)) << given;
        EXPECT_EQ(contents(), before) << arguments;
    }
}

TEST(Qel, ShowsAndChangesDocuments) {
    const QelFolder folder;
    folder.Write("plain.xml", "<Method><Unit k=\"1\">mL</Unit></Method>");
    for (const auto& [arguments, answer] : Cases<const char*, const char*>{
             {"encipher plain.xml e.xml", "0 "},
             {"encipher e.xml x.xml", "1 qel: e.xml: is enciphered already\n"},
             {"get e.xml Unit", "0 mL\n"},
             {"get e.xml Unit/@k", "0 1\n"},
             {"get e.xml Item --count", "0 0\n"},
             {"get e.xml Unit --json | tr -d ' \\n'", "0 {\"file\":\"e.xml\",\"path\":\"Unit\",\"text\":\"mL\"}"},
             {"get e.xml Unit --json --count | tr -d ' \\n'", "0 {\"file\":\"e.xml\",\"path\":\"Unit\",\"count\":1}"},
             {"set e.xml Limits/Item 温度", "0 "},
             {"get e.xml Limits --xml", "0 <Limits><Item>温度</Item></Limits>\n"},
             {"get e.xml Other", "1 qel: e.xml: has no \"Other\"\n"},
             {"decipher e.xml plain.xml", "1 qel: plain.xml: exists; --force replaces it\n"},
             {"decipher e.xml plain.xml --force", "0 "},
             {"show plain.xml | tr -d '\\r\\n'",
              "0 <Method><Unit k=\"1\">mL</Unit><Limits><Item>温度</Item></Limits></Method>"},
             {"get missing.xml Unit", "5 qel: missing.xml: file not found\n"},
         })
        EXPECT_EQ(folder.Qel("xml " + std::string(arguments)), answer);
    EXPECT_EQ(folder.Read("e.xml")[0], '\0') << "a document stays in its form";
    EXPECT_EQ(folder.Qel("seal plain.xml >/dev/null && " QELLIB10_QEL " xml get plain.xml Unit"), "0 mL\n");
    folder.Write("broken.xml", "<Method>");
    EXPECT_EQ(folder.Qel("xml show broken.xml")[0], '9');
    folder.Write("empty.xml", "");
    for (const char* arguments : {"show empty.xml", "set empty.xml A x", "encipher empty.xml plain.xml --force"})
        EXPECT_EQ(folder.Qel("xml " + std::string(arguments)), "9 qel: empty.xml: not a well-formed document\n");
    EXPECT_FALSE(folder.Read("plain.xml").empty()) << "what is there is not lost";
}

TEST(Qel, TestsItselfAndReportsIt) {
    const QelFolder folder;
    EXPECT_TRUE(folder.Qel("selftest --folder . --report r.pdf").ends_with("\n17 of 17 checks passed\n"));
    EXPECT_EQ(OutputOf("cd '" + folder.Posix().native() + "' && ls && pdftotext r.pdf - | grep -c '^passed$'"),
              "r.pdf\n17\n");
    EXPECT_EQ(folder.Qel("selftest --report r.pdf"), "1 qel: r.pdf: exists; --force replaces it\n");
    EXPECT_EQ(folder.Qel("selftest --folder /proc"), "1 qel: /proc: no folder can be made there\n");
}

TEST(Qel, ReadsAndChangesSettings) {
    const RegistryScope registry;
    const QelFolder folder;
    folder.Write("meter.ini", "; kept\r\n[Window]\r\nWidth=640\r\n");
    const std::string key = "'HKEY_CURRENT_USER\\Software\\Meter' ";
    for (const auto& [arguments, answer] : std::vector<std::pair<std::string, std::string>>{
             {"get meter.ini Window Width", "0 640\n"},
             {"get meter.ini Window Height", "1 qel: meter.ini: has no such setting\n"},
             {"set meter.ini Window Height 480", "0 "},
             {"list meter.ini", "0 [Window]\nWidth=640\nHeight=480\n"},
             {"set é.ini Window Height 1 && " QELLIB10_QEL " profile get é.ini Window Height", "0 1\n"},
             {"list missing.ini", "5 qel: missing.ini: file not found\n"},
             {"get missing.ini Window Width", "5 qel: missing.ini: file not found\n"},
             {"set " + key + "Window Width 640 --number", "0 "},
             {"set " + key + "'' Name メータ", "0 "},
             {"get " + key + "'' Name", "0 メータ\n"},
             {"list " + key, "0 []\nName=メータ\n[Window]\nWidth=640\n"},
             {"list " + key + "--json",
              "0 {\n  \"\": {\n    \"Name\": \"メータ\"\n  },\n  \"Window\": {\n    \"Width\": 640\n  }\n}\n"},
             {"backup " + key + ".bak", "0 "},
             {"set " + key + "Window Width 1 --number", "0 "},
             {"restore " + key + ".bak", "0 "},
             {"get " + key + "Window Width", "0 640\n"},
             {"restore " + key + ".none", "1 "},
             {"list " + key.substr(0, key.size() - 2) + "X'",
              "1 qel: HKEY_CURRENT_USER\\Software\\MeterX: there is no such key\n"},
         }) {
        const std::string given = folder.Qel("profile " + arguments);
        EXPECT_EQ(answer.ends_with("\n") || answer == "0 " ? given : given.substr(0, 2), answer) << arguments;
    }
    EXPECT_TRUE(folder.Read("meter.ini").starts_with("; kept\r\n"));
}
