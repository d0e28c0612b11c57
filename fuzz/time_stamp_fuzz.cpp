// Laws: an answer of a time stamping authority is accepted with the one authority below only for what it has signed; a
// request that is read is written as one with the same hash.
#include "qellib10/platform/crypto/time_stamp.h"

#include "law.h"
#include "qellib10/platform/error.h"

namespace {

// Its key is gone: no other stamp than the one in the seeds can be made.
constexpr const char* kAuthority = R"(-----BEGIN CERTIFICATE-----
MIIBcjCCARegAwIBAgIUe84QSIkH9W349sfO41TNiR6vDxkwCgYIKoZIzj0EAwIw
DTELMAkGA1UEAwwCY2EwIBcNMjAwMTAxMDAwMDAwWhgPMjExOTEyMDgwMDAwMDBa
MA0xCzAJBgNVBAMMAmNhMFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE/dUB+3hY
VlTo8prMlkJsg6jaiGyczXUOgZWQXiT6OXa4EbAxu24vLRyPKCwaZfcqU7S3yDzf
6lxajHWQurhJ/qNTMFEwHQYDVR0OBBYEFKnK0Pk9fWRqURTotVdxu7a0InDGMB8G
A1UdIwQYMBaAFKnK0Pk9fWRqURTotVdxu7a0InDGMA8GA1UdEwEB/wQFMAMBAf8w
CgYIKoZIzj0EAwIDSQAwRgIhAMbj0G65XA7cGKhnpYciw9QDmEM5IH6NF5rvg5S/
B1YQAiEAlLcTX5TVD0lxujKbvodwN7AK4ftv3UeowlXyAs+l6eo=
-----END CERTIFICATE-----
)";
constexpr std::int64_t kTime = 1'795'798'972'231;  // 2026-11-27T17:02:52.231Z

// @return whether it is accepted
template <class Body> bool IsAccepted(Body&& body) {
    try {
        body();
        return true;
    } catch (const qel::DataError&) {
        return false;
    }
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    const std::string bytes = Text(data, size);
    return IsAccepted([&] { qel::StampRequest::OfBytes(bytes); }) || IsAccepted([&] {
               qel::StampAuthorities(kAuthority)
                   .Require(qel::StampAnswer(bytes), qel::StampRequest::OfHash(qel::Sha256("abc")));
           });
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const qel::StampAuthorities authority(kAuthority);
    const std::string bytes = Text(data, size);
    IsAccepted([&] {
        const qel::StampAnswer answer(bytes);
        Require(answer.Time() >= 0 && answer.Accuracy() >= 0);
        if (IsAccepted([&] { authority.Require(answer, qel::StampRequest::OfHash(answer.Hash())); }))
            Require(answer.Hash() == qel::Sha256("abc") && answer.Time() == kTime);
    });
    IsAccepted([&] {
        const qel::StampRequest request = qel::StampRequest::OfBytes(bytes);
        Require(qel::StampRequest::OfBytes(request.Bytes()).Hash() == request.Hash());
    });
    IsAccepted([&] { qel::StampAuthorities{bytes}; });
    return 0;
}
