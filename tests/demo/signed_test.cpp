#include "titration.h"

TEST_F(Titration, IsSignedByTwoPeopleAndEveryAttackIsAnsweredAsItShouldBe) {
    const std::string user = "--add-user mori --full-name 'Mori Akiko' --new-password violet --role ",
                      other =
                          "--add-user abe --full-name 'Abe Ken' --new-password indigo --role approver --out results",
                      mori = " --user mori --password violet --out results",
                      abe = " --user abe --password indigo --out results";
    const auto refused = [&](const std::string& arguments) {
        const Outcome run = Run(arguments);
        return std::to_string(run.status) + ' ' + run.err;
    };
    for (const std::string& right : {std::string(kVinegar), user + "reviewer --out results", other})
        EXPECT_EQ(refused(right), "0 ");
    for (const auto& [arguments, sentence] : Cases<std::string, std::string>{
             {user + "owner --out results", "\"owner\" is neither reviewer nor approver\n"},
             {"--sign reviewed --out results", "usage: "},
             {"--add-user '../x' --full-name x --new-password x --role reviewer --out results",
              "\"../x\" has more than letters, digits, _ and -, so it names no file for a key\n"},
             {other + " --user mori --password violet", "mori may not add users\n"},
             {"--sign approved --version 1" + abe, "not signed: the version is approved before it was reviewed\n"},
             {"--sign approved --version 1" + mori, "not signed: the user may not sign as approved\n"},
             {"--sign Approved --version 1" + mori, "\"Approved\" is not reviewed, approved or rejected\n"},
             {other, "\"abe\" is a user already, or longer than 64 letters\n"},
             {"--sign reviewed --version 1 --user violet --password mori --out results", "nobody is logged on"},
             {"--sign reviewed --version 2" + mori, "there is no version 2, the latest is 1\n"},
             {"--signed-report 1 --out results", "version 1 is not final: 0 of 1 approvals are there\n"},
         }) {
        const std::string found = refused(arguments);
        EXPECT_TRUE(found.starts_with("1 " + sentence)) << found;
    }
    for (const std::string& right :
         {"--sign reviewed --version 1" + mori, "--sign approved --version 1" + abe,
          std::string("--signed-report 1 --out results"), std::string("--export --out results"), std::string(kVinegar)})
        EXPECT_EQ(refused(right), "0 ");
    EXPECT_EQ(Run("--verify --out results").status, 0);
    EXPECT_EQ(m_folder.Read("results/trail.jsonl").find("violet"), std::string::npos)
        << "a password in place of a name";
    const std::string report = m_folder.Read("results/report-1.job");
    m_folder.Write("results/report-1.job", m_folder.Read("results/report-2.job"));
    EXPECT_NE(refused("--signed-report 1 --out results").find("is not what mori has signed"), std::string::npos);
    m_folder.Write("results/report-1.job", report);

    const Outcome attacked = Run("--attack --out results");
    EXPECT_EQ(attacked.status, 0) << attacked.out;
    EXPECT_TRUE(attacked.out.ends_with("37 attacks, all answered as they should be\n")) << attacked.out << attacked.err;
    EXPECT_EQ(Run("--verify --out results").status, 0) << "the copies alone are attacked";
    std::filesystem::remove(Path("results/signed-1.pdf"));
    EXPECT_EQ(refused("--attack --out results").substr(0, 2), "1 ");
}
