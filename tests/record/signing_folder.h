#pragma once

#include "trail_folder.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "qellib10/record/person_statement_text.h"
#include "qellib10/record/signature_check.h"

inline const std::string kCabinet = "{01234567-89AB-4DEF-8123-456789ABCDEF}";

inline qel::PersonStatement Approval(const std::string& user) {
    return {.trailId = std::string(32, 'a'),
            .nonce = std::string(32, 'b'),
            .cabinet = kCabinet,
            .cabinetVersion = 2,
            .size = 3,
            .sha256 = HashOf("abc"),
            .reportSha256 = HashOf("report"),
            .meaning = "approved",
            .name = "Mori Akiko",
            .user = user,
            .time = 1'795'749'745'123};
}

/// Signed with the key of ByteSigner(@p key).
inline std::string Signed(const qel::PersonStatement& statement, int key) {
    ByteSigner signer(key);
    const std::string part = qel::SignedPart(statement);
    return qel::StatementText(part, {signer.Key(), {signer.Sign(qel::BytesToSign(qel::kStatementNamespace, part))}});
}

/// A trail in which people sign. The key of mori is 11, that of nakano 12, that of sato 13: entries 2 to 4.
class People : public TrailFolder {
public:
    People() : trail(Settings(), std::make_shared<ByteSigner>(1)) {
        trail.Open();
        Do("mori +11, nakano +12, sato +13");
    }

    /// Steps such as "mori +14, mori -11, mori registers, sato begins, sato recovers, mori registers abd, mori author,
    /// sato:14 approved, ota +14 Mori_Akiko": announces and ends keys, also with a printed name, registers "abc" or
    /// something else, and signs, also with another key.
    void Do(const std::string& steps) {
        std::istringstream all(steps);
        for (std::string step; std::getline(all >> std::ws, step, ',');) {
            std::istringstream words(step);
            std::string user, what, content;
            words >> user >> what >> content;
            const std::size_t colon = user.find(':');
            const std::string name = user.substr(0, colon);
            if (const char* const kind = KindOf(what)) {
                Append(kind, name == "?" ? "" : name, content.empty() ? "abc" : content, what);
            } else {
                const qel::PersonStatement statement = Of(name, what);
                Put(statement, Signed(statement, colon == std::string::npos ? m_keys.at(name)
                                                                            : std::stoi(user.substr(colon + 1))));
            }
        }
    }
    /// What the user would sign next.
    qel::PersonStatement Of(const std::string& user, const std::string& meaning = "approved") {
        qel::PersonStatement statement = Approval(user);
        statement.trailId = Entry(1).trailId;
        statement.nonce = HashOf(std::to_string(m_nonce++)).substr(0, 32);
        statement.meaning = meaning;
        statement.time = Entry(1).time - 60'000;
        return statement;
    }
    void Put(const qel::PersonStatement& statement, const std::string& text) {
        qel::TrailRecord record = Record("signature");
        record.user = statement.user;
        record.cabinet = statement.cabinet;
        record.cabinetVersion = statement.cabinetVersion;
        record.size = statement.size;
        record.sha256 = statement.sha256;
        record.statement = text;
        EXPECT_TRUE(trail.Append(record)) << qel::LastFailure().text;
    }
    /// Each finding with its entry, such as "same 7".
    std::string Found(const qel::SigningRules& rules = {}) const {
        constexpr const char* kNames[] = {"malformed", "key",     "changed", "unknown", "ended",
                                          "repeated",  "trail",   "entry",   "allowed", "same",
                                          "order",     "version", "name",    "register"};
        qel::SignatureReport report;
        EXPECT_EQ(qel::CheckSignatures(Name("t"), rules, report), 1) << qel::LastFailure().text;
        std::string found;
        for (const qel::SignatureFinding& finding : report.findings)
            found += kNames[static_cast<int>(finding.fault)] + (' ' + std::to_string(finding.entry)) + ' ';
        if (!found.empty()) found.pop_back();
        return found;
    }

    qel::Trail trail;

private:
    static const char* KindOf(const std::string& what) {
        return what[0] == '+'        ? "person key added"
               : what[0] == '-'      ? "person key ended"
               : what == "begins"    ? "result registering"
               : what == "registers" ? "result registered"
               : what == "recovers"  ? "recovered"
                                     : nullptr;
    }
    void Append(const char* kind, const std::string& user, const std::string& content, const std::string& what) {
        const bool isKey = what[0] == '+' || what[0] == '-';
        qel::TrailRecord record = Record(kind, isKey ? ByteSigner(std::stoi(what.substr(1))).PublicKey() : "");
        record.user = user;
        if (isKey) {
            record.after = content == "abc" ? "" : content;
            std::ranges::replace(record.after, '_', ' ');
        } else {
            record.cabinet = kCabinet;
            record.cabinetVersion = 2;
            record.size = content.size();
            record.sha256 = HashOf(content);
            if (what == "recovers") record.after = "result registered";
        }
        EXPECT_TRUE(trail.Append(record)) << qel::LastFailure().text;
    }

    const std::map<std::string, int> m_keys = {{"mori", 11}, {"nakano", 12}, {"sato", 13}};
    int m_nonce = 0;
};
