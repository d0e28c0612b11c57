#pragma once

#include <qellib10/gtk/person_dialog.h>
#include <qellib10/qellib10.h>
#include <qellib10/record.h>
#include <qellib10/store.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace titrator {

/// The results with their history, and who may do what; every step has its entry in a trail. Two people are there from
/// the first start on: mori titrates, sato approves. Operations throw std::runtime_error with the reason.
class Archive {
public:
    /// Makes what is missing in the folder.
    explicit Archive(const std::string& folder)
        : m_folder(folder),
          m_trail({.path = Path("archive/trail.jsonl"),
                   .headPath = Path("installation/trail.head"),
                   .application = "titrator"},
                  Key()),
          m_recorded(m_trail),
          m_store(Path("installation/users.db").c_str(),
                  {.record = [this](const qel::AccountChange& change) { return m_recorded.Enter(change); }}),
          m_results(m_trail, {.cabinetPath = Path("archive/results.hcf"), .recordPath = Path("archive/renewals.qel")}) {
        m_rules.mayGive = [this](std::string_view user, std::string_view, std::int64_t) {
            CUserInfo account;
            return m_store.GetUserInfo(CString(user), &account) != 0 && account.GetFunctionSecurity(kApprove) > 0;
        };
        Require(m_trail.Open() != 0);
        m_store.Connect();
        Require(m_store.IsConnected() != 0 && m_results.Open() != 0);
        if (m_store.GetUserCount() == 0) AddPeople();
    }

    /// Registers a result as the next version, of a user who logs on for it.
    void Register(const std::string& document, const qel::PersonTyped& person) {
        Require(m_store.Logon(person.name.c_str(), person.password.c_str()) != 0);
        const std::string file = Path("result.txt");
        std::ofstream(file) << document;
        Require(m_results.Register(file, person.name, m_results.Latest() > 0 ? "titrated again" : "").has_value());
        Require(m_store.Logout() != 0);
    }

    /// Approves the latest version: somebody else, who has the right and the password.
    void Approve(const qel::PersonTyped& person) {
        const std::vector<qel::SignatureBlock> versions = Versions();
        if (versions.empty()) throw std::runtime_error("There is no result yet.");
        const qel::RecordedVersion& latest = versions.front().version;
        auto key = std::make_shared<qel::PersonKey>();
        Require(key->Open(Path("installation/person-" + person.name)) != 0);
        const qel::SigningRequest request{.cabinet = m_results.Guid(),
                                          .cabinetVersion = latest.version,
                                          .size = latest.size,
                                          .sha256 = latest.sha256,
                                          .meaning = std::string(qel::signature_meaning::kApproved)};
        qel::Signing signing(m_trail, key, m_rules);
        Require(signing.Sign(request, person.name, person.password).has_value());
    }

    /// The versions with who has signed them, the latest one first.
    std::vector<qel::SignatureBlock> Versions() {
        const auto versions = m_results.List();
        Require(versions.has_value());
        std::vector<qel::SignatureBlock> blocks;
        for (const qel::RecordedVersion& version : *versions) {
            const auto block = qel::ReadSignatureBlock(m_trail, m_results.Guid(), version, m_rules);
            Require(block.has_value());
            blocks.insert(blocks.begin(), *block);
        }
        return blocks;
    }

private:
    static constexpr int kApprove = 100;  // the application's function: a level above 0 may approve

    static void Require(bool isDone) {
        if (!isDone) throw std::runtime_error(qel::FailureSentence(qel::LastFailure(), "refused"));
    }
    std::string Path(const std::string& name) const { return m_folder + "/" + name; }

    std::shared_ptr<qel::Signer> Key() const {
        for (const char* folder : {"archive", "installation"})
            Require(CQFile::CreateDirectories(Path(folder).c_str()) != 0);
        auto key = std::make_shared<qel::KeyFileSigner>();
        const std::string file = Path("installation/key");
        Require((CQFile::IsExist(file.c_str()) != 0 ? key->Load(file) : key->Make(file, "titrator")) != 0);
        return key;
    }

    // Where an application is set up it asks for passwords. The first administrator, sato, may do everything.
    void AddPeople() {
        m_recorded.SetReason("set up");
        CFunctionSecurity rights;
        rights.AddFunctionInfo(CFunctionInfo(kApprove, "Approve", 0));
        CUserInfo mori;
        mori.SetUsername("mori");
        mori.SetPassword("violet");
        mori.SetSecurity(rights);
        qel::RecordedPersonKey sato(m_trail, Path("installation/person-sato"));
        Require(m_store.CreateFirstAdministrator("sato", "amber") != 0 && m_store.AddUser(mori) != 0);
        Require(sato.Make("sato", "Sato Ken", "amber", "sato", "set up") != 0);
    }

    std::string m_folder;
    qel::Trail m_trail;
    qel::RecordedUsers m_recorded;
    qel::UserStore m_store;
    qel::RecordedCabinet m_results;
    qel::SigningRules m_rules;
};

}  // namespace titrator
