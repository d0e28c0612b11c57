#include "qellib10/base/guid.h"

#include <gtest/gtest.h>

#include "qellib10/base/guid_text_plain.h"

TEST(Guid, BothFormsWriteTheSameText) {
    const CGuid guid = GUID{0x0123ABCD, 0x9FA0, 0x00FF, {0xDE, 0xAD, 0xBE, 0xEF, 0x09, 0x90, 0x0A, 0xFA}};
    EXPECT_EQ(guid.GetString(), "{0123ABCD-9FA0-00FF-DEAD-BEEF09900AFA}");
    char plain[qel::kGuidTextLength];
    qel::WriteGuidPlain(guid, plain);
    EXPECT_EQ(guid.GetString(), CString(plain, sizeof plain));
}

TEST(Guid, NewOnesDifferAndSayTheirVersion) {
    CGuid first = CGuid::CreateNewGuid();
    EXPECT_FALSE(first.IsNull());
    EXPECT_NE(first, CGuid::CreateNewGuid());
    EXPECT_NE(first, CGuid());
    EXPECT_EQ(first.GetString().GetAt(15), '4');
    EXPECT_EQ(static_cast<GUID*>(first)->Data4[0] >> 6, 2);
}
