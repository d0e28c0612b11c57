#include "qellib10/platform/crypto/time_stamp.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/ts.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

template <auto Function> struct Free {
    template <class Object> void operator()(Object* object) const noexcept { Function(object); }
};
using Request = std::unique_ptr<TS_REQ, Free<::TS_REQ_free>>;
using Response = std::unique_ptr<TS_RESP, Free<::TS_RESP_free>>;
using Store = std::unique_ptr<X509_STORE, Free<::X509_STORE_free>>;
using Context = std::unique_ptr<TS_VERIFY_CTX, Free<::TS_VERIFY_CTX_free>>;
using Certificate = std::unique_ptr<X509, Free<::X509_free>>;
using Bytes = std::unique_ptr<BIO, Free<::BIO_free>>;
using Number = std::unique_ptr<ASN1_INTEGER, Free<::ASN1_INTEGER_free>>;
using Imprint = std::unique_ptr<TS_MSG_IMPRINT, Free<::TS_MSG_IMPRINT_free>>;
using Algorithm = std::unique_ptr<X509_ALGOR, Free<::X509_ALGOR_free>>;

// The thread's list of errors is the application's, too: ours go at the end of a step.
class ErrorScope {
public:
    ErrorScope() { ::ERR_set_mark(); }
    ~ErrorScope() { ::ERR_pop_to_mark(); }
    ErrorScope(const ErrorScope&) = delete;
    ErrorScope& operator=(const ErrorScope&) = delete;

    // Why libcrypto has refused.
    static std::string Reason() {
        const char* data = nullptr;
        int flags = 0;
        const unsigned long error = ::ERR_peek_last_error_all(nullptr, nullptr, nullptr, &data, &flags);
        const char* const reason = ::ERR_reason_error_string(error);
        std::string text = reason != nullptr ? reason : "not accepted";
        if (data != nullptr && *data != '\0' && (flags & ERR_TXT_STRING) != 0) text += std::string(": ") + data;
        return text;
    }
};

void Require(bool isRight, const char* what) {
    if (!isRight) throw DataError(what);
}

template <class Object> Object* Made(Object* object) {
    Require(object != nullptr, "no time stamp can be worked with");
    return object;
}

// Takes bytes apart that are one object and nothing else.
template <class Owner, auto Parse> Owner Parsed(std::string_view bytes, std::size_t longest, const char* refusal) {
    Require(bytes.size() <= longest, refusal);
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = at + bytes.size();
    Owner object(Parse(nullptr, &at, static_cast<long>(bytes.size())));
    Require(object != nullptr && at == end, refusal);
    return object;
}

Sha256Digest HashOf(TS_MSG_IMPRINT* imprint, const char* refusal) {
    const ASN1_OBJECT* method = nullptr;
    ::X509_ALGOR_get0(&method, nullptr, nullptr, ::TS_MSG_IMPRINT_get_algo(imprint));
    const ASN1_OCTET_STRING* const bytes = ::TS_MSG_IMPRINT_get_msg(imprint);
    Sha256Digest hash;
    Require(::OBJ_obj2nid(method) == NID_sha256 && ::ASN1_STRING_length(bytes) == static_cast<int>(hash.size()),
            refusal);
    const auto* const from = reinterpret_cast<const std::byte*>(::ASN1_STRING_get0_data(bytes));
    std::copy(from, from + hash.size(), hash.begin());
    return hash;
}

void SetHash(TS_REQ* request, const Sha256Digest& hash) {
    const Imprint imprint(Made(::TS_MSG_IMPRINT_new()));
    const Algorithm method(Made(::X509_ALGOR_new()));
    ::X509_ALGOR_set_md(method.get(), ::EVP_sha256());
    auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<std::byte*>(hash.data()));  // it only reads them
    Require(::TS_MSG_IMPRINT_set_algo(imprint.get(), method.get()) == 1 &&
                ::TS_MSG_IMPRINT_set_msg(imprint.get(), bytes, static_cast<int>(hash.size())) == 1 &&
                ::TS_REQ_set_version(request, 1) == 1 && ::TS_REQ_set_msg_imprint(request, imprint.get()) == 1,
            "no request for a time stamp can be made");
}

void SetNonce(TS_REQ* request) {
    std::uint64_t random = 0;
    const Number nonce(Made(::ASN1_INTEGER_new()));
    Require(::RAND_bytes(reinterpret_cast<unsigned char*>(&random), sizeof random) == 1,
            "the system has no random numbers");
    Require(::ASN1_INTEGER_set_uint64(nonce.get(), random) == 1 && ::TS_REQ_set_nonce(request, nonce.get()) == 1,
            "no request for a time stamp can be made");
}

constexpr const char* kOtherTime = "the time of the stamp is not in its form, or out of range";

unsigned Digits(std::string_view text, std::size_t at, std::size_t count) {
    unsigned value = 0;
    for (const char c : text.substr(at, count)) {
        Require(c >= '0' && c <= '9', kOtherTime);
        value = 10 * value + static_cast<unsigned>(c - '0');
    }
    return value;
}

// "20261127032225.123Z", whose fraction has any number of digits and may be missing.
std::int64_t TimeOf(std::string_view text) {
    using namespace std::chrono;
    Require(text.size() >= 15 && text.size() <= 32 && text.back() == 'Z', kOtherTime);
    const year_month_day date(year(static_cast<int>(Digits(text, 0, 4))), month(Digits(text, 4, 2)),
                              day(Digits(text, 6, 2)));
    const unsigned hour = Digits(text, 8, 2), minute = Digits(text, 10, 2), second = Digits(text, 12, 2);
    Require(date.ok() && hour < 24 && minute < 60 && second < 60, kOtherTime);
    const std::string_view fraction = text.substr(14, text.size() - 15);
    Require(fraction.empty() || (fraction.front() == '.' && fraction.size() > 1), kOtherTime);
    for (std::size_t i = 1; i < fraction.size(); ++i) Digits(fraction, i, 1);
    const std::string thousandths = std::string(fraction.empty() ? "" : fraction.substr(1, 3)) + "000";
    const auto moment =
        sys_days(date) + hours(hour) + minutes(minute) + seconds(second) + milliseconds(Digits(thousandths, 0, 3));
    const std::int64_t time = moment.time_since_epoch() / milliseconds(1);
    Require(time >= 0, kOtherTime);
    return time;
}

// Rounded up; of what is out of range the largest.
std::int64_t AccuracyOf(const TS_ACCURACY* accuracy) {
    if (accuracy == nullptr) return 0;
    const auto value = [](const ASN1_INTEGER* number) {
        std::int64_t of = 0;
        constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
        if (number == nullptr) return of;
        return ::ASN1_INTEGER_get_int64(&of, number) == 1 && of >= 0 ? std::min(of, kLargest) : kLargest;
    };
    return 1000 * value(::TS_ACCURACY_get_seconds(accuracy)) + value(::TS_ACCURACY_get_millis(accuracy)) +
           (value(::TS_ACCURACY_get_micros(accuracy)) + 999) / 1000;
}

// Two documents with one SHA-1 can be made on purpose.
void RequireStrongSignature(PKCS7* token) {
    PKCS7_SIGNER_INFO* const signer = sk_PKCS7_SIGNER_INFO_value(::PKCS7_get_signer_info(token), 0);
    X509_ALGOR* hash = nullptr;
    ::PKCS7_SIGNER_INFO_get0_algs(signer, nullptr, &hash, nullptr);
    const ASN1_OBJECT* method = nullptr;
    ::X509_ALGOR_get0(&method, nullptr, nullptr, hash);
    constexpr std::array kStrong = {NID_sha256, NID_sha384, NID_sha512};
    Require(std::ranges::find(kStrong, ::OBJ_obj2nid(method)) != kStrong.end(),
            "the time stamp is signed over another hash than SHA-256, SHA-384 or SHA-512");
}

}  // namespace

struct StampRequest::State {
    Request request;
};

StampRequest::StampRequest(std::unique_ptr<State> state, const Sha256Digest& hash)
    : m_state(std::move(state)), m_hash(hash) {}
StampRequest::~StampRequest() = default;
StampRequest::StampRequest(StampRequest&&) noexcept = default;

StampRequest StampRequest::OfHash(const Sha256Digest& hash) {
    const ErrorScope errors;
    std::unique_ptr<State> state(new State{Request(Made(::TS_REQ_new()))});
    SetHash(state->request.get(), hash);
    return {std::move(state), hash};
}

StampRequest StampRequest::Make(const Sha256Digest& hash) {
    const ErrorScope errors;
    StampRequest made = OfHash(hash);
    SetNonce(made.m_state->request.get());
    Require(::TS_REQ_set_cert_req(made.m_state->request.get(), 1) == 1, "no request for a time stamp can be made");
    return made;
}

StampRequest StampRequest::OfBytes(std::string_view bytes) {
    const ErrorScope errors;
    constexpr const char* kRefusal = "it is no request for a time stamp of a SHA-256";
    std::unique_ptr<State> state(new State{Parsed<Request, ::d2i_TS_REQ>(bytes, kLongestStampRequest, kRefusal)});
    Require(::TS_REQ_get_version(state->request.get()) == 1, kRefusal);
    const Sha256Digest hash = qel::HashOf(::TS_REQ_get_msg_imprint(state->request.get()), kRefusal);
    return {std::move(state), hash};
}

std::string StampRequest::Bytes() const {
    const ErrorScope errors;
    const int size = ::i2d_TS_REQ(m_state->request.get(), nullptr);
    Require(size > 0, "no request for a time stamp can be made");
    std::string bytes(static_cast<std::size_t>(size), '\0');
    auto* to = reinterpret_cast<unsigned char*>(bytes.data());
    Require(::i2d_TS_REQ(m_state->request.get(), &to) == size, "no request for a time stamp can be made");
    return bytes;
}

struct StampAnswer::State {
    Response response;
};

StampAnswer::StampAnswer(std::string_view bytes) {
    const ErrorScope errors;
    constexpr const char* kRefusal = "it is no answer of a time stamping authority";
    Require(bytes.size() <= kLongestStampAnswer, kStampAnswerTooLong);
    m_state = std::make_unique<State>();
    m_state->response = Parsed<Response, ::d2i_TS_RESP>(bytes, kLongestStampAnswer, kRefusal);
    TS_TST_INFO* const content = ::TS_RESP_get_tst_info(m_state->response.get());
    Require(content != nullptr, "the time stamping authority has refused a stamp");
    m_hash = qel::HashOf(::TS_TST_INFO_get_msg_imprint(content), "the time stamp is not one of a SHA-256");
    const ASN1_GENERALIZEDTIME* const time = ::TS_TST_INFO_get_time(content);
    m_time = TimeOf({reinterpret_cast<const char*>(::ASN1_STRING_get0_data(time)),
                     static_cast<std::size_t>(::ASN1_STRING_length(time))});
    m_accuracy = AccuracyOf(::TS_TST_INFO_get_accuracy(content));
}
StampAnswer::~StampAnswer() = default;
StampAnswer::StampAnswer(StampAnswer&&) noexcept = default;

struct StampAuthorities::State {
    Store store;
};

StampAuthorities::StampAuthorities(std::string_view pem) {
    const ErrorScope errors;
    m_state = std::make_unique<State>();
    m_state->store.reset(Made(::X509_STORE_new()));
    const Bytes file(Made(::BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()))));
    int count = 0;
    for (;; ++count) {
        const Certificate certificate(::PEM_read_bio_X509_AUX(file.get(), nullptr, nullptr, nullptr));
        if (certificate == nullptr) break;
        qel::Require(::X509_STORE_add_cert(m_state->store.get(), certificate.get()) == 1,
                     "a certificate cannot be used");
    }
    const bool isAtEnd = ERR_GET_REASON(::ERR_peek_last_error()) == PEM_R_NO_START_LINE;
    qel::Require(count > 0 && isAtEnd, "it is no file of certificates, or one of them is damaged");
}
StampAuthorities::~StampAuthorities() = default;
StampAuthorities::StampAuthorities(StampAuthorities&&) noexcept = default;
StampAuthorities& StampAuthorities::operator=(StampAuthorities&&) noexcept = default;

void StampAuthorities::Require(const StampAnswer& answer, const StampRequest& request) const {
    const ErrorScope errors;
    X509_STORE* const store = m_state->store.get();
    // The certificate may have ended since: what counts is the time of the stamp.
    const Context context(Made(::TS_REQ_to_TS_VERIFY_CTX(request.m_state->request.get(), nullptr)));
    ::X509_VERIFY_PARAM_set_time(::X509_STORE_get0_param(store), static_cast<std::time_t>(answer.m_time / 1000));
    qel::Require(::X509_STORE_up_ref(store) == 1, "no time stamp can be worked with");
    ::TS_VERIFY_CTX_set_store(context.get(), store);  // frees it with the context
    ::TS_VERIFY_CTX_add_flags(context.get(), TS_VFY_SIGNATURE);
    if (::TS_RESP_verify_response(context.get(), answer.m_state->response.get()) != 1)
        throw DataError("the time stamp is not accepted: " + ErrorScope::Reason());
    RequireStrongSignature(::TS_RESP_get_token(answer.m_state->response.get()));
}

}  // namespace qel
