#include "qellib10/record/person_statement.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/canonical_json.h"
#include "qellib10/record/person_statement_text.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_line.h"

namespace qel {
namespace {

constexpr std::uint64_t kFormat = 1;
constexpr std::size_t kLongestName = 256;
constexpr const char* kRefusal = "the text is no signed statement";

void Require(bool isRight, const char* what) {
    if (!isRight) throw DataError(std::string("a statement ") + what);
}

void RequireValid(const PersonStatement& statement) {
    Require(IsHex(statement.trailId, 32), "has no trail ID");
    Require(IsHex(statement.nonce, 32), "has no nonce");
    Require(IsCabinet(statement.cabinet), "names no cabinet");
    Require(statement.cabinetVersion > 0, "names no version");
    Require(IsHex(statement.sha256, 64), "has no hash of the version");
    Require(statement.reportSha256.empty() || IsHex(statement.reportSha256, 64), "has a report's hash in another form");
    Require(IsShown(statement.meaning, kLongestName), "needs a meaning of 1 to 256 bytes that can be shown");
    Require(IsShown(statement.name, kLongestName) && IsShown(statement.user, kLongestName),
            "needs names of 1 to 256 bytes that can be shown");
}

PersonStatement ReadFields(JsonReader& json) {
    PersonStatement statement;
    Require(json.Number("statement") == kFormat, "has a format that is not known");
    statement.trailId = json.Text("trail");
    statement.nonce = json.Text("nonce");
    statement.cabinet = json.Text("cabinet");
    statement.cabinetVersion = json.Number("cabinetversion");
    statement.size = json.Number("size");
    statement.sha256 = json.Text("sha256");
    statement.reportSha256 = json.Text("report");
    statement.meaning = json.Text("meaning");
    statement.name = json.Text("name");
    statement.user = json.Text("user");
    statement.time = ReadTrailTime(json.Text("time"));
    return statement;
}

}  // namespace

std::string SignedPart(const PersonStatement& statement) {
    RequireValid(statement);
    JsonWriter json;
    json.Number("statement", kFormat);
    json.Text("trail", statement.trailId);
    json.Text("nonce", statement.nonce);
    json.Text("cabinet", statement.cabinet);
    json.Number("cabinetversion", statement.cabinetVersion);
    json.Number("size", statement.size);
    json.Text("sha256", statement.sha256);
    json.Text("report", statement.reportSha256);
    json.Text("meaning", statement.meaning);
    json.Text("name", statement.name);
    json.Text("user", statement.user);
    json.Text("time", TrailTimeText(statement.time));
    return json.Written() + '}';
}

std::string StatementText(std::string_view signedPart, const PersonSshSignature& signature) {
    std::string text(signedPart.substr(0, signedPart.size() - 1));
    text += ",\"sig\":\"";
    text += EncodeBase64(signature.Blob(kStatementNamespace));
    text += "\"}";
    return text;
}

SignedStatement ReadSignedStatement(std::string_view text) {
    Require(text.size() < kLongestLine, "is too long");
    SignedStatement read;
    JsonReader json(text, kRefusal);
    read.statement = ReadFields(json);
    read.signature = PersonSshSignature::OfBlob(DecodeBase64(json.Text("sig")), kStatementNamespace);
    json.End();
    read.signedPart = SignedPart(read.statement);
    Require(StatementText(read.signedPart, read.signature) == text, "is written in another form than the only one");
    return read;
}

std::optional<PersonStatement> ReadPersonStatement(std::string_view text) {
    std::optional<PersonStatement> statement;
    AsResult("ReadPersonStatement", [&] {
        statement = ReadSignedStatement(text).statement;
        return 1;
    });
    return statement;
}

}  // namespace qel
