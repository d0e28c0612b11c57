// Promises: Base64 compared with OpenSSL's EVP block functions; GUID text into a caller's buffer, and as a string,
// compared with libuuid; 1 MiB appended to the buffer in pieces of 64 bytes compared with GLib's GByteArray; a telegram
// of five number fields compared with std::string and std::to_chars.
//   Base64Encode/* >= 7 Base64EncodePeer/*
//   Base64Decode/* >= 7 Base64DecodePeer/*
//   GuidText >= 4 GuidTextPeer
//   GuidString >= 1 GuidTextPeer
//   BufferAppend >= 1.5 BufferAppendPeer
//   Telegram >= 1.5 TelegramPeer
#include <benchmark/benchmark.h>
#include <glib.h>
#include <openssl/evp.h>
#include <uuid.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "qellib10/base/base64.h"
#include "qellib10/base/guid.h"
#include "qellib10/base/guid_text.h"
#include "qellib10/base/q_binary.h"

namespace {

void Check(bool equal) {
    if (!equal) std::abort();
}

// A block of bytes, its text, and space for the results of both sides.
struct Base64Work {
    explicit Base64Work(benchmark::State& state)
        : bytes(static_cast<std::size_t>(state.range(0))), text(bytes.size() / 3 * 4 + 5), back(bytes.size() + 3) {
        std::mt19937 random(1);
        for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
        length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(), Size());
        std::vector<char> ours(text.size());
        int size = static_cast<int>(ours.size());
        Check(CBase64::GetBinToBase64(bytes.data(), Size(), ours.data(), size) != 0 && size == length &&
              std::memcmp(ours.data(), text.data(), static_cast<std::size_t>(size)) == 0);
        size = static_cast<int>(back.size());
        Check(CBase64::GetBase64ToBin(text.data(), length, back.data(), size) != 0 && size == Size() &&
              std::memcmp(back.data(), bytes.data(), bytes.size()) == 0);
    }
    int Size() const { return static_cast<int>(bytes.size()); }

    std::vector<unsigned char> bytes;
    std::vector<char> text;
    int length = 0;
    std::vector<unsigned char> back;
};

void Base64Encode(benchmark::State& state) {
    Base64Work work(state);
    for (auto _ : state) {
        int size = static_cast<int>(work.text.size());
        benchmark::DoNotOptimize(CBase64::GetBinToBase64(work.bytes.data(), work.Size(), work.text.data(), size));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
void Base64EncodePeer(benchmark::State& state) {
    Base64Work work(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            EVP_EncodeBlock(reinterpret_cast<unsigned char*>(work.text.data()), work.bytes.data(), work.Size()));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
void Base64Decode(benchmark::State& state) {
    Base64Work work(state);
    for (auto _ : state) {
        int size = static_cast<int>(work.back.size());
        benchmark::DoNotOptimize(CBase64::GetBase64ToBin(work.text.data(), work.length, work.back.data(), size));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
void Base64DecodePeer(benchmark::State& state) {
    Base64Work work(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            EVP_DecodeBlock(work.back.data(), reinterpret_cast<const unsigned char*>(work.text.data()), work.length));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Base64Encode)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK(Base64EncodePeer)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK(Base64Decode)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK(Base64DecodePeer)->Arg(1 << 10)->Arg(1 << 20);

void GuidText(benchmark::State& state) {
    CGuid guid = CGuid::CreateNewGuid();
    std::array<char, qel::kGuidTextLength> text;
    for (auto _ : state) {
        benchmark::DoNotOptimize(static_cast<GUID*>(guid));
        qel::WriteGuid(guid, text);
        benchmark::DoNotOptimize(text);
    }
    Check(guid.GetString() == CString(std::string_view(text.data(), text.size())));
}
void GuidTextPeer(benchmark::State& state) {
    uuid_t id;
    uuid_generate_random(id);
    char text[UUID_STR_LEN];
    for (auto _ : state) {
        benchmark::DoNotOptimize(id);
        uuid_unparse_upper(id, text);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GuidText);
BENCHMARK(GuidTextPeer);

// Including the string's memory.
void GuidString(benchmark::State& state) {
    CGuid guid = CGuid::CreateNewGuid();
    for (auto _ : state) {
        const CString text = guid.GetString();
        benchmark::DoNotOptimize(static_cast<const char*>(text));
    }
}
BENCHMARK(GuidString);

constexpr int kPieceSize = 64, kPieces = (1 << 20) / kPieceSize;

constexpr auto kPiece = [] {
    std::array<unsigned char, kPieceSize> piece = {};
    for (std::size_t i = 0; i < piece.size(); ++i) piece[i] = static_cast<unsigned char>(i);
    return piece;
}();

void Append(CQBinary& buffer) {
    for (int i = 0; i < kPieces; ++i) buffer.AddBinary(kPiece.data(), kPieceSize);
}
GByteArray* PeerAppended() {
    GByteArray* array = g_byte_array_new();
    for (int i = 0; i < kPieces; ++i) g_byte_array_append(array, kPiece.data(), kPieceSize);
    return array;
}

void BufferAppend(benchmark::State& state) {
    CQBinary ours;
    Append(ours);
    GByteArray* peers = PeerAppended();
    Check(ours.Compare(peers->data, static_cast<int>(peers->len)) != 0);
    g_byte_array_free(peers, TRUE);
    for (auto _ : state) {
        CQBinary buffer;
        Append(buffer);
        benchmark::DoNotOptimize(static_cast<unsigned char*>(buffer));
    }
}
void BufferAppendPeer(benchmark::State& state) {
    for (auto _ : state) {
        GByteArray* array = PeerAppended();
        benchmark::DoNotOptimize(array->data);
        g_byte_array_free(array, TRUE);
    }
}
BENCHMARK(BufferAppend);
BENCHMARK(BufferAppendPeer);

// A line of results as a balance sends it: two counters and three measured values, already rounded because the peer
// does not round.
struct Reading {
    int number, count;
    double weight, volume, ratio;
};

void Write(CQBinary& line, const Reading& reading) {
    line.AddStrIntTopSign(reading.number, 6);
    line.AddStrIntTopSign(reading.count, 8);
    line.AddDoubleTopSign(reading.weight, 10, 3, 0);
    line.AddDoubleTopSign(reading.volume, 10, 2, 0);
    line.AddDoubleTopSign(reading.ratio, 12, 4, 0);
}

template <class... Arguments> void AppendField(std::string& line, std::size_t width, bool negative, Arguments... what) {
    char digits[64];
    const char* const end = std::to_chars(std::begin(digits), std::end(digits), what...).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    line += negative ? '-' : ' ';
    line.append(width - 1 - length, ' ').append(digits, length);
}
void Write(std::string& line, const Reading& reading) {
    AppendField(line, 6, reading.number < 0, reading.number);
    AppendField(line, 8, reading.count < 0, reading.count);
    AppendField(line, 10, reading.weight < 0, reading.weight, std::chars_format::fixed, 3);
    AppendField(line, 10, reading.volume < 0, reading.volume, std::chars_format::fixed, 2);
    AppendField(line, 12, reading.ratio < 0, reading.ratio, std::chars_format::fixed, 4);
}

constexpr Reading kReadings[] = {{1, 123456, 12.345, 0.25, 1.0625},
                                 {42, -7, -0.125, 1234.5, -0.0312},
                                 {999, 0, 100.001, 19.99, 3.1416},
                                 {-3, 65535, 0.5, -88.08, 2.7183}};

void Telegram(benchmark::State& state) {
    for (const Reading& reading : kReadings) {
        CQBinary ours;
        Write(ours, reading);
        std::string peers;
        Write(peers, reading);
        Check(ours.Compare(peers.data(), static_cast<int>(peers.size())) != 0);
    }
    for (auto _ : state) {
        for (const Reading& reading : kReadings) {
            CQBinary line;
            Write(line, reading);
            benchmark::DoNotOptimize(static_cast<unsigned char*>(line));
        }
    }
}
void TelegramPeer(benchmark::State& state) {
    for (auto _ : state) {
        for (const Reading& reading : kReadings) {
            std::string line;
            Write(line, reading);
            benchmark::DoNotOptimize(line.data());
        }
    }
}
BENCHMARK(Telegram);
BENCHMARK(TelegramPeer);

}  // namespace

BENCHMARK_MAIN();
