#include "qellib10/platform/pam/pam_check.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <utility>

#include <security/pam_appl.h>

namespace qel {
namespace {

struct Conversation {
    const std::string& user;
    std::string_view password;
    bool isNameAsked = false, isPasswordAsked = false, isMoreAsked = false;
};

void Wipe(pam_response* answers, int count) {
    for (int i = 0; i < count; ++i) {
        if (answers[i].resp == nullptr) continue;
        ::explicit_bzero(answers[i].resp, std::strlen(answers[i].resp));
        std::free(answers[i].resp);
    }
    std::free(answers);
}

// The service frees it.
int Copy(std::string_view text, pam_response& answer) {
    answer.resp = static_cast<char*>(std::malloc(text.size() + 1));
    if (answer.resp == nullptr) return PAM_BUF_ERR;
    std::memcpy(answer.resp, text.data(), text.size());
    answer.resp[text.size()] = '\0';
    return PAM_SUCCESS;
}

int Answer(Conversation& self, int style, pam_response& answer) {
    switch (style) {
        case PAM_PROMPT_ECHO_OFF:
            if (!std::exchange(self.isPasswordAsked, true)) return Copy(self.password, answer);
            break;
        case PAM_PROMPT_ECHO_ON:
            if (!std::exchange(self.isNameAsked, true)) return Copy(self.user, answer);
            break;
        case PAM_ERROR_MSG:
        case PAM_TEXT_INFO:
            return PAM_SUCCESS;  // nobody is there to read it
        default:
            break;
    }
    self.isMoreAsked = true;
    return PAM_CONV_ERR;
}

// Called by the system's library, so nothing is thrown.
int Converse(int count, const pam_message** questions, pam_response** answers, void* conversation) noexcept {
    if (count <= 0 || count > PAM_MAX_NUM_MSG || questions == nullptr || answers == nullptr) return PAM_CONV_ERR;
    auto* const made = static_cast<pam_response*>(std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
    if (made == nullptr) return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i) {
        const int status = Answer(*static_cast<Conversation*>(conversation), questions[i]->msg_style, made[i]);
        if (status == PAM_SUCCESS) continue;
        Wipe(made, count);
        return status;
    }
    *answers = made;
    return PAM_SUCCESS;
}

bool IsOfAccount(int status) {
    return status == PAM_ACCT_EXPIRED || status == PAM_PERM_DENIED || status == PAM_NEW_AUTHTOK_REQD ||
           status == PAM_AUTHTOK_EXPIRED || status == PAM_CRED_EXPIRED || status == PAM_MAXTRIES;
}

class Service {
public:
    Service(const std::string& name, Conversation& conversation, const std::string& folder)
        : m_conversation{Converse, &conversation} {
        const char* const user = conversation.user.c_str();
        m_status = folder.empty() ? ::pam_start(name.c_str(), user, &m_conversation, &m_handle)
                                  : ::pam_start_confdir(name.c_str(), user, &m_conversation, folder.c_str(), &m_handle);
    }
    ~Service() {
        if (m_handle != nullptr) ::pam_end(m_handle, m_status);
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    // A user without a password is not let in.
    int Check() {
        constexpr int kFlags = static_cast<int>(PAM_SILENT | PAM_DISALLOW_NULL_AUTHTOK);
        if (m_status == PAM_SUCCESS) m_status = ::pam_authenticate(m_handle, kFlags);
        // Whether the password was right is not known then: who has an account, and in what state, is not said.
        if (IsOfAccount(m_status)) m_status = PAM_AUTH_ERR;
        if (m_status != PAM_SUCCESS) return m_status;
        m_status = ::pam_acct_mgmt(m_handle, kFlags);
        return m_status == PAM_AUTH_ERR ? PAM_PERM_DENIED : m_status;  // the password was right
    }
    bool IsStarted() const { return m_handle != nullptr; }
    // A service may exchange the name.
    std::string User() const { return Item(PAM_USER); }
    // The name of its file: PAM makes small letters of capitals.
    std::string Name() const { return Item(PAM_SERVICE); }
    // Not PAM's own words: they are in the language of the program, and this goes into entries of a trail.
    std::string Text() const { return "PAM has status " + std::to_string(m_status); }

private:
    std::string Item(int type) const {
        const void* item = nullptr;
        if (::pam_get_item(m_handle, type, &item) != PAM_SUCCESS || item == nullptr) return "";
        return static_cast<const char*>(item);
    }

    pam_conv m_conversation;
    pam_handle_t* m_handle = nullptr;
    int m_status = PAM_SYSTEM_ERR;
};

// Without its file, PAM would take the service "other", with which Debian lets in every account that has the password.
bool IsFileIn(const std::string& folder, const std::string& service) {
    const std::filesystem::path path = std::filesystem::path(folder) / service;
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && std::ifstream(path).is_open();
}

bool HasFile(const std::string& service, const std::string& folder) {
    if (!folder.empty()) return IsFileIn(folder, service);
    return IsFileIn("/etc/pam.d", service) || IsFileIn("/usr/lib/pam.d", service);
}

// Modules such as pam_unix set what the whole process does about SIGCHLD, and put it back.
std::mutex turns;

PamAnswer RefusalOf(int status, const Service& service) {
    switch (status) {
        case PAM_AUTH_ERR:
        case PAM_USER_UNKNOWN:
            return {.text = "name or password are wrong"};
        case PAM_NEW_AUTHTOK_REQD:
        case PAM_AUTHTOK_EXPIRED:
        case PAM_CRED_EXPIRED:
            return {.text = "the password has expired and has to be changed"};
        case PAM_ACCT_EXPIRED:
            return {.text = "the account has expired"};
        case PAM_PERM_DENIED:
            return {.text = "the account may not be used here"};
        case PAM_AUTHINFO_UNAVAIL:
        case PAM_CRED_UNAVAIL:
        case PAM_CRED_INSUFFICIENT:
            return {.kind = FailureKind::kState, .text = "the system's passwords cannot be read now"};
        case PAM_BUF_ERR:
            return {.kind = FailureKind::kMemory, .text = "memory ran out"};
        default:
            return {.kind = FailureKind::kState, .text = "the system cannot check passwords: " + service.Text()};
    }
}

}  // namespace

PamAnswer AskPam(const std::string& service, const std::string& user, std::string_view password,
                 const std::string& folder) {
    // A zero byte would end a text of the system's library, so that its start alone is compared.
    const bool isText = password.find('\0') == std::string_view::npos && user.find('\0') == std::string::npos;
    if (!isText || user.empty() || password.size() >= PAM_MAX_RESP_SIZE || user.size() >= PAM_MAX_RESP_SIZE)
        return {.text = "name or password are wrong"};
    if (service.empty() || service.find_first_of(std::string_view("/\0", 2)) != std::string::npos)
        return {.kind = FailureKind::kArgument, .text = "this cannot be the name of a service"};
    Conversation conversation{user, password};
    const std::scoped_lock turn(turns);
    Service asked(service, conversation, folder);
    if (asked.IsStarted() && !HasFile(asked.Name(), folder))
        return {.kind = FailureKind::kState, .text = "there is no service of this name that can be read"};
    const int status = asked.Check();
    if (conversation.isMoreAsked)
        return {.kind = FailureKind::kState, .text = "the service asks for more than a name and a password"};
    if (status != PAM_SUCCESS) return RefusalOf(status, asked);
    if (!conversation.isPasswordAsked)
        return {.kind = FailureKind::kState, .text = "the service has not asked for the password"};
    if (asked.User() != user)
        return {.kind = FailureKind::kState, .text = "the service has let in another user than the one named"};
    return {.isRight = true, .kind = FailureKind::kNone};
}

}  // namespace qel
