#include "qellib10/platform/pam/pam_check.h"

#include <cstdlib>
#include <cstring>
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

class Service {
public:
    Service(const std::string& name, Conversation& conversation) : m_conversation{Converse, &conversation} {
        m_status = ::pam_start(name.c_str(), conversation.user.c_str(), &m_conversation, &m_handle);
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
        if (m_status != PAM_SUCCESS) return m_status;
        m_status = ::pam_acct_mgmt(m_handle, kFlags);
        return m_status == PAM_AUTH_ERR ? PAM_PERM_DENIED : m_status;  // the password was right
    }
    // A service may exchange the name.
    std::string User() const {
        const void* user = nullptr;
        if (::pam_get_item(m_handle, PAM_USER, &user) != PAM_SUCCESS || user == nullptr) return "";
        return static_cast<const char*>(user);
    }
    std::string Text() const {
        const char* const text = ::pam_strerror(m_handle, m_status);
        return text != nullptr ? text : "no reason is known";
    }

private:
    pam_conv m_conversation;
    pam_handle_t* m_handle = nullptr;
    int m_status = PAM_SYSTEM_ERR;
};

PamAnswer RefusalOf(int status, const Service& service) {
    switch (status) {
        case PAM_AUTH_ERR:
        case PAM_USER_UNKNOWN:
            return {.text = "name or password are wrong"};
        case PAM_MAXTRIES:
            return {.text = "the password was wrong too often"};
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

PamAnswer AskPam(const std::string& service, const std::string& user, std::string_view password) {
    // A zero byte would end a text of the system's library, so that its start alone is compared.
    const bool isText = password.find('\0') == std::string_view::npos && user.find('\0') == std::string::npos;
    if (!isText || user.empty() || password.size() >= PAM_MAX_RESP_SIZE || user.size() >= PAM_MAX_RESP_SIZE)
        return {.text = "name or password are wrong"};
    if (service.empty() || service.find_first_of(std::string_view("/\0", 2)) != std::string::npos)
        return {.kind = FailureKind::kArgument, .text = "this cannot be the name of a service"};
    Conversation conversation{user, password};
    Service asked(service, conversation);
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
