#include "qellib10/record/pam_authenticator.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/pam/pam_check.h"

namespace qel {

PamAuthenticator::PamAuthenticator(std::string_view service) : m_service(service) {}

bool PamAuthenticator::operator()(std::string_view user, std::string_view password) const {
    return AsResult("PamAuthenticator", [&] {
               const PamAnswer answer = AskPam(m_service, std::string(user), password);
               return answer.isRight ? 1 : Refuse(answer.kind, m_service, answer.text);
           }) != 0;
}

}  // namespace qel
