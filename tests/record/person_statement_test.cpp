#include "signing_folder.h"

#include "../support/output_of.h"
#include "qellib10/platform/error.h"

namespace {

bool IsRead(const std::string& text) {
    try {
        const qel::SignedStatement read = qel::ReadSignedStatement(text);
        return qel::StatementText(read.signedPart, read.signature) == text;
    } catch (const qel::DataError&) {
        return false;
    }
}

}  // namespace

TEST(PersonStatement, IsRefusedOrNotSignedWithAnyBitChangedAndAnyLengthCut) {
    const std::string text = Signed(Approval("mori"), 1);
    ASSERT_TRUE(IsRead(text) && qel::ReadSignedStatement(text).IsSigned());
    EXPECT_EQ(qel::ReadPersonStatement(text), Approval("mori"));
    for (std::size_t bit = 0; bit < 8 * text.size(); ++bit) {
        std::string changed = text;
        changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
        EXPECT_FALSE(IsRead(changed) && qel::ReadSignedStatement(changed).IsSigned()) << changed;
    }
    for (std::size_t size = 0; size < text.size(); ++size) EXPECT_FALSE(IsRead(text.substr(0, size))) << size;
    EXPECT_FALSE(IsRead(text + ' '));
    EXPECT_FALSE(qel::ReadPersonStatement(text.substr(1)));
    EXPECT_EQ(qel::LastFailure().kind, qel::FailureKind::kData);
}

TEST(PersonStatement, HasNoContentThatCouldBeMisread) {
    using S = qel::PersonStatement;
    for (const auto& [what, change, isRight] : Cases<const char*, void (*)(S&), bool>{
             {"as it is", [](S&) {}, true},
             {"no report", [](S& s) { s.reportSha256 = ""; }, true},
             {"a meaning of its own",
              [](S& s) {
                  s.meaning =
                      "gepr\xC3\xBC"
                      "ft \"B\"";
              },
              true},
             {"the first moment", [](S& s) { s.time = 0; }, true},
             {"the longest name", [](S& s) { s.name = std::string(256, 'x'); }, true},
             {"too long a name", [](S& s) { s.name = std::string(257, 'x'); }, false},
             {"no name", [](S& s) { s.name = ""; }, false},
             {"no user", [](S& s) { s.user = ""; }, false},
             {"a blank after the user", [](S& s) { s.user = "mori "; }, false},
             {"a blank before the meaning", [](S& s) { s.meaning = " approved"; }, false},
             {"no meaning", [](S& s) { s.meaning = ""; }, false},
             {"a meaning of two lines", [](S& s) { s.meaning = "approved\nrejected"; }, false},
             {"a meaning from right to left",
              [](S& s) {
                  s.meaning =
                      "\xE2\x80\xAE"
                      "devorppa";
              },
              false},
             {"a name that is not UTF-8", [](S& s) { s.name = "M\xF6ri"; }, false},
             {"capital digits", [](S& s) { s.sha256[0] = 'A'; }, false},
             {"a short hash", [](S& s) { s.reportSha256.pop_back(); }, false},
             {"a short nonce", [](S& s) { s.nonce.pop_back(); }, false},
             {"no trail", [](S& s) { s.trailId = ""; }, false},
             {"no cabinet", [](S& s) { s.cabinet = ""; }, false},
             {"a cabinet in another form", [](S& s) { s.cabinet[1] = 'a'; }, false},
             {"no version", [](S& s) { s.cabinetVersion = 0; }, false},
             {"a size that JSON cannot have", [](S& s) { s.size = std::uint64_t{1} << 53; }, false},
             {"before 1970", [](S& s) { s.time = -1; }, false},
             {"the year 10000", [](S& s) { s.time = qel::kTrailTimeEnd; }, false},
         }) {
        S statement = Approval("mori");
        change(statement);
        if (!isRight) {
            EXPECT_THROW(qel::SignedPart(statement), qel::DataError) << what;
        } else {
            EXPECT_EQ(qel::ReadSignedStatement(Signed(statement, 1)).statement, statement) << what;
        }
    }
}

TEST(PersonStatement, IsCheckedBySshKeygenAlone) {
    const TempFolder folder;
    const std::string good = Signed(Approval("mori"), 1);
    // As somebody does who has only the text: cut it at the signature.
    const auto answer = [&](const std::string& text, const char* nameSpace) {
        const std::size_t end = text.rfind(",\"sig\":\"");
        folder.Write("signed", text.substr(0, end) + '}');
        folder.Write("sig", "-----BEGIN SSH SIGNATURE-----\n" + text.substr(end + 8, text.size() - end - 10) +
                                "\n-----END SSH SIGNATURE-----\n");
        const std::string status =
            OutputOf("cd '" + folder.Posix().native() + "' && ssh-keygen -Y verify -f keys -I mori -n " + nameSpace +
                     " -s sig <signed >/dev/null 2>&1; echo $?");
        return status == "0\n";
    };
    folder.Write("keys", "mori " + ByteSigner(1).PublicKey() + '\n');
    std::string changed = good;
    changed.replace(changed.find("approved"), 8, "rejected");
    EXPECT_TRUE(answer(good, "qellib10-signature"));
    EXPECT_FALSE(answer(good, "qellib10-entry"));
    EXPECT_FALSE(answer(changed, "qellib10-signature"));
    EXPECT_FALSE(answer(Signed(Approval("mori"), 2), "qellib10-signature"));
}
