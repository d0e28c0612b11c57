// Promises: in both directions faster than Botan, OpenSSL and libgcrypt; one block and the set-up of a key not slower
// than OpenSSL's.
//   Run<Ours, *>/1024 >= 1.1 Run<BotanCipher, *>/1024
//   Run<Ours, *>/1048576 >= 1.1 Run<BotanCipher, *>/1048576
//   Run<Ours, *>/1024 >= 2.4 Run<OpenSsl, *>/1024
//   Run<Ours, *>/1048576 >= 2.4 Run<OpenSsl, *>/1048576
//   Run<Ours, *>/1024 >= 2 Run<Gcrypt, *>/1024
//   Run<Ours, *>/1048576 >= 2 Run<Gcrypt, *>/1048576
//   Run<Ours, *>/8 >= 1 Run<OpenSsl, *>/8
//   KeySetUp<Ours> >= 0.95 KeySetUp<OpenSsl>
//   KeySetUp<Ours> beside KeySetUp<BotanCipher>
//   KeySetUp<Ours> beside KeySetUp<Gcrypt>
//   Run<Ours, *>/8 beside Run<BotanCipher, *>/8
//   Run<Ours, *>/8 beside Run<Gcrypt, *>/8
#define OPENSSL_SUPPRESS_DEPRECATED  // the block function is OpenSSL's fastest
#include <algorithm>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>
#include <botan/block_cipher.h>
#include <gcrypt.h>
#include <openssl/blowfish.h>

#include "qellib10/secure/crypt_brow_fish.h"

namespace {

using Bytes = std::vector<unsigned char>;
enum class Direction { encipher, decipher };

constexpr int kBlock = 8;
const Bytes kKey = {'s', 'i', 'x', 't', 'e', 'e', 'n', ' ', 'b', 'y', 't', 'e', 's', ' ', 'o', 'k'};

// Each has Set for a key and Run for whole blocks.
struct Ours {
    void Set(const Bytes& key) { cipher.Initialize(key.data(), static_cast<int>(key.size())); }
    void Run(Direction direction, const Bytes& in, Bytes& out) {
        const auto size = static_cast<DWORD>(in.size());
        direction == Direction::encipher ? static_cast<void>(cipher.Encode(in.data(), out.data(), size))
                                         : cipher.Decode(in.data(), out.data(), size);
    }
    CCryptBrowFish cipher;
};

struct OpenSsl {
    void Set(const Bytes& bytes) { BF_set_key(&key, static_cast<int>(bytes.size()), bytes.data()); }
    void Run(Direction direction, const Bytes& in, Bytes& out) {
        const int mode = direction == Direction::encipher ? BF_ENCRYPT : BF_DECRYPT;
        for (std::size_t i = 0; i < in.size(); i += kBlock) BF_ecb_encrypt(in.data() + i, out.data() + i, &key, mode);
    }
    BF_KEY key;
};

struct BotanCipher {
    void Set(const Bytes& key) { cipher->set_key(key.data(), key.size()); }
    void Run(Direction direction, const Bytes& in, Bytes& out) {
        const std::size_t blocks = in.size() / kBlock;
        direction == Direction::encipher ? cipher->encrypt_n(in.data(), out.data(), blocks)
                                         : cipher->decrypt_n(in.data(), out.data(), blocks);
    }
    std::unique_ptr<Botan::BlockCipher> cipher = Botan::BlockCipher::create_or_throw("Blowfish");
};

struct Gcrypt {
    Gcrypt() {
        gcry_check_version(nullptr);
        gcry_cipher_open(&cipher, GCRY_CIPHER_BLOWFISH, GCRY_CIPHER_MODE_ECB, 0);
    }
    ~Gcrypt() { gcry_cipher_close(cipher); }
    Gcrypt(const Gcrypt&) = delete;
    Gcrypt& operator=(const Gcrypt&) = delete;
    void Set(const Bytes& key) { gcry_cipher_setkey(cipher, key.data(), key.size()); }
    void Run(Direction direction, const Bytes& in, Bytes& out) {
        direction == Direction::encipher ? gcry_cipher_encrypt(cipher, out.data(), out.size(), in.data(), in.size())
                                         : gcry_cipher_decrypt(cipher, out.data(), out.size(), in.data(), in.size());
    }
    gcry_cipher_hd_t cipher = nullptr;
};

Bytes Swapped(Bytes bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += 4) std::reverse(bytes.data() + i, bytes.data() + i + 4);
    return bytes;
}

template <class Cipher, Direction direction> void Run(benchmark::State& state) {
    Bytes in(static_cast<std::size_t>(state.range(0))), out(in.size()), ours(in.size());
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = static_cast<unsigned char>(i * 131 + (i >> 8));
    Cipher cipher;
    cipher.Set(kKey);
    Ours reference;
    reference.Set(kKey);
    cipher.Run(direction, in, out);
    const bool isOurs = std::is_same_v<Cipher, Ours>;
    reference.Run(direction, isOurs ? in : Swapped(in), ours);
    if (out != (isOurs ? ours : Swapped(ours))) return state.SkipWithError("the ciphers differ");
    for (auto _ : state) {
        cipher.Run(direction, in, out);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

template <class Cipher> void KeySetUp(benchmark::State& state) {
    Cipher cipher;
    for (auto _ : state) {
        cipher.Set(kKey);
        benchmark::ClobberMemory();
    }
}

constexpr std::int64_t kSmall = 1 << 10, kLarge = 1 << 20;

BENCHMARK(Run<Ours, Direction::encipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<BotanCipher, Direction::encipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<OpenSsl, Direction::encipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<Gcrypt, Direction::encipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<Ours, Direction::decipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<BotanCipher, Direction::decipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<OpenSsl, Direction::decipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(Run<Gcrypt, Direction::decipher>)->Arg(kBlock)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(KeySetUp<Ours>);
BENCHMARK(KeySetUp<BotanCipher>);
BENCHMARK(KeySetUp<OpenSsl>);
BENCHMARK(KeySetUp<Gcrypt>);

}  // namespace

BENCHMARK_MAIN();
