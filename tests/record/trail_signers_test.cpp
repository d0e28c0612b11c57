#include "qellib10/record/trail_signers.h"

#include "../support/output_of.h"
#include "qellib10/record/trail_writer.h"
#include "trail_folder.h"

namespace {

// The key 1 started the trail at second 0, 2 was added at 1 and ended at 2, 3 was added at 3 and revoked at 4.
class Signers : public testing::Test, public TrailFolder {
public:
    Signers() {
        qel::TrailWriter writer(Settings(), std::make_shared<ByteSigner>(1), [this] {
            m_now.time += 1000;
            m_now.bootTime += 1000;
            return m_now;
        });
        writer.Open();
        for (const auto& [action, key] :
             {std::pair("key added", 2), {"key ended", 2}, {"key added", 3}, {"key revoked", 3}}) {
            qel::TrailRecord record = Record(action, ByteSigner(key).PublicKey());
            if (record.action == qel::trail_kind::kKeyRevoked) record.after = "4";
            writer.Append(record);
        }
    }

    std::string Differences(const std::string& file) const {
        constexpr const char* kKinds[] = {"malformed", "missing", "unknown", "time"};
        Write("allowed", file);
        qel::TrailSigners signers;
        std::vector<qel::SignersDifference> differences;
        EXPECT_EQ(signers.Read(Name("t")), 1);
        EXPECT_EQ(signers.Compare(Name("allowed"), differences), 1);
        std::string text;
        for (const qel::SignersDifference& each : differences)
            text += kKinds[static_cast<int>(each.kind)] + (' ' + std::to_string(each.line)) + ' ' +
                    std::to_string(each.entry) + '|';
        return text;
    }

private:
    qel::TrailMoment m_now = {1'800'000'000'500, 0, "c163102d-1e66-48ff-9173-6b35d61f6c99"};
};

std::string Line(const std::string& options, int key) {
    return "installation " + options + (options.empty() ? "" : " ") + ByteSigner(key).PublicKey() + '\n';
}

}  // namespace

TEST_F(Signers, OfTheArchiveAgreeWithTheEntriesOrDiffer) {
    qel::TrailSigners signers;
    ASSERT_EQ(signers.Read(Name("t")), 1);
    const std::string text = signers.Text();
    const std::string first = Line("", 1), revoked = Line("valid-before=\"20270115080005Z\"", 3),
                      ended = Line("valid-after=\"20270115080002Z\",valid-before=\"20270115080003Z\"", 2);
    for (const auto& [what, file, found] :
         {std::tuple<const char*, std::string, const char*>{"its own text", text, ""},
          {"without starts", first + ended + revoked, ""},
          {"revoked earlier", first + ended + Line("valid-before=\"20270115080004Z\"", 3), ""},
          {"one of people", text + Line("namespaces=\"qellib10-signature\"", 7), ""},
          {"empty", "", "missing 0 1|missing 0 2|missing 0 4|"},
          {"one missing", first + revoked, "missing 0 2|"},
          {"one more", text + Line("", 7), "unknown 4 0|"},
          {"an authority", text + Line("cert-authority", 1), "unknown 4 0|"},
          {"the same twice", text + first, "unknown 4 0|"},
          {"without an end", first + Line("", 2) + revoked, "time 2 2|"},
          {"a later end", first + Line("valid-before=\"20270115080004Z\"", 2) + revoked, "time 2 2|"},
          {"revoked later", first + ended + Line("valid-before=\"20270115080006Z\"", 3), "time 3 4|"},
          {"an end of what goes on", Line("valid-before=\"20990101Z\"", 1) + ended + revoked, "time 1 1|"},
          {"another start", Line("valid-after=\"20200101Z\"", 1) + ended + revoked, "time 1 1|"},
          {"no such file", "installation\n", "malformed 0 0|"}}) {
        EXPECT_EQ(Differences(file), found) << what << '\n' << text;
    }
    Write("allowed", text);
    EXPECT_EQ(OutputOf("cd '" + Posix().native() + "' && " QELLIB10_CHECK_TRAIL " t allowed 2>&1 | sed 's/,.*//'"),
              "5 entries\n");
}
