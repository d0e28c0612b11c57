#pragma once

#include "trail_folder.h"

#include "../support/output_of.h"
#include "qellib10/record/stamp_entry.h"

/// A time stamping authority made by openssl: "ca.pem" has issued "tsa", "short" (valid in January 2020 alone), "plain"
/// (for signing) and "both" (for more than stamps), "other.pem" another "foreign".
class Authority {
public:
    Authority() { Run("faketime '2020-01-01 00:00:00' sh -c '" + std::string(kMake) + "'"); }
    static const Authority& Only() {
        static const Authority authority;
        return authority;
    }
    std::string Run(const std::string& command) const {
        return OutputOf("cd '" + m_folder.Posix().native() + "' && { " + command + "\n} 2>errors; echo $?");
    }
    std::string Ca(const std::string& name = "ca.pem") const { return m_folder.Name(name); }
    /// A request that is not ours, for a hash.
    std::string Query(const std::string& hash) const {
        Run("openssl ts -query -out q.tsq -digest " + hash + (hash.size() == 128 ? " -sha512 -cert" : ""));
        return m_folder.Read("q.tsq");
    }
    /// The answer to the bytes of a request. @param when empty: now
    std::string Answer(const std::string& request, const std::string& signer = "tsa", const std::string& when = "",
                       const std::string& section = "t") const {
        m_folder.Write("q.tsq", request);
        Run((when.empty() ? "" : "faketime '" + when + "' ") + "openssl ts -reply -config tsa.cnf -section " + section +
            " -queryfile q.tsq -signer " + signer + ".pem -inkey " + signer + ".key -out a.tsr");
        return m_folder.Read("a.tsr");
    }
    /// The same content, signed with a certificate for something else.
    std::string SignedAgain(const std::string& answer, const std::string& signer) const {
        m_folder.Write("a.tsr", answer);
        Run("openssl ts -reply -in a.tsr -token_out -out a.tok && openssl cms -verify -noverify -in a.tok -inform DER "
            "-out content && openssl cms -sign -binary -nodetach -in content -econtent_type "
            "1.2.840.113549.1.9.16.1.4 -cades -outform DER -out a.tok -signer " +
            signer + ".pem -inkey " + signer + ".key && openssl ts -reply -in a.tok -token_in -out a.tsr");
        return m_folder.Read("a.tsr");
    }
    /// Whether openssl accepts an answer, with certificates as of the time of the stamp.
    bool IsVerified(const std::string& answer, const std::string& request, const std::string& time) const {
        m_folder.Write("q.tsq", request);
        m_folder.Write("a.tsr", answer);
        return Run("openssl ts -verify -queryfile q.tsq -in a.tsr -CAfile ca.pem -attime " + time + " >output") ==
               "0\n";
    }

private:
    static constexpr const char* kMake = R"(
echo 01 >serial
section() { echo "[$1]"; echo "signer_digest=$2"; shift 2; printf "%s\n" "$@"; }
{ for name in "t sha256" "weak sha1"; do
    section $name serial=serial default_policy=1.2.3.4.1 digests=sha256,sha512 accuracy=secs:1 clock_precision_digits=3
done; section strict sha256 serial=serial default_policy=1.2.3.4.1 digests=sha512; } >tsa.cnf
{ section tsa - extendedKeyUsage=critical,timeStamping; section plain - keyUsage=digitalSignature
  section both - extendedKeyUsage=critical,timeStamping,emailProtection; } | grep -v signer_digest >ext.cnf
new="-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes"
for ca in ca other; do openssl req -x509 $new -keyout $ca.key -out $ca.pem -subj /CN=$ca -days 36500; done
cert() {
    openssl req $new -keyout $1.key -subj /CN=$1 | openssl x509 -req -CA $2.pem -CAkey $2.key -CAcreateserial \
        -days $3 -extfile ext.cnf -extensions $4 -out $1.pem
}
cert tsa ca 36500 tsa; cert short ca 30 tsa; cert foreign other 36500 tsa; cert plain ca 36500 plain
cert both ca 36500 both)";

    TempFolder m_folder;
};

/// A trail with entries that the test writes line by line, as the owners of keys would.
class StampFolder : public TrailFolder {
public:
    /// Appends a line that follows, one second later.
    void Add(const qel::TrailRecord& record, int key = 1) {
        qel::TrailEntry entry = m_last;
        static_cast<qel::TrailRecord&>(entry) = record;
        ++entry.number;
        entry.time += 1000;
        entry.bootTime += 1000;
        entry.previous = m_hash;
        PutBack(m_text + ByteSigner(key).Line(entry));
    }
    void Start(int key = 1) {
        Append({}, key);
        PutBack(Read("t"));
    }
    /// An earlier state of the trail, as whoever may write to the archive can put it back.
    void PutBack(const std::string& text) {
        m_text = text;
        Write("t", m_text);
        const std::string line = LinesOf(text).back();
        m_hash = HashOf(line.substr(0, line.size() - 1));
        m_last = qel::ReadEntry(line.substr(0, line.size() - 1)).entry;
    }
    std::string RequestOf(std::uint64_t number = 0) const {
        return qel::MakeStampRequest(Name("t"), number).value_or("");
    }
    /// What stamps the last entry. @param change of the answer's entry
    qel::TrailRecord Stamp(const std::string& answer) const { return qel::StampRecord(m_last, m_text.size(), answer); }
    std::string Answer(const std::string& when = "") const {
        return Authority::Only().Answer(RequestOf(), "tsa", when);
    }
    const std::string& Hash() const { return m_hash; }

private:
    qel::TrailEntry m_last;
    std::string m_text, m_hash;
};
