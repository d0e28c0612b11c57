#include "qellib10/base/rs_control_code.h"

#include "qellib10/platform/text/own_strings.h"
#include "qellib10/resource/string_ids.h"

CRSControlCode::~CRSControlCode() = default;

void CRSControlCode::ConvertDisplay(CString& text) {
    if (text.IsEmpty()) {
        text = qel::LookUpOwnString(qel::kNoControlCodeId).value_or(CString());
        return;
    }
    // No token can start inside another one or inside its replacement, so one pass each is enough, in any order.
    for (const char* carriageReturn : {"$0d", "$0D"}) text.Replace(carriageReturn, "[CR]");
    for (const char* lineFeed : {"$0a", "$0A"}) text.Replace(lineFeed, "[LF]");
}
