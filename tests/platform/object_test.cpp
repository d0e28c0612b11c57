#include "qellib10/platform/archive/object.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace {

class CDevice : public CObject {
public:
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
};

class CBalance : public CDevice {
public:
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
};

const CRuntimeClass* CDevice::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CDevice, CObject>("Device");
    return &theClass;
}

const CRuntimeClass* CBalance::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CBalance, CDevice>("Balance", 3);
    return &theClass;
}

}  // namespace

TEST(Object, KnowsItsClassAndBases) {
    const CBalance balance;
    EXPECT_TRUE(balance.IsKindOf(CBalance::GetThisClass()));
    EXPECT_TRUE(balance.IsKindOf(CDevice::GetThisClass()));
    EXPECT_TRUE(balance.IsKindOf(CObject::GetThisClass()));
    EXPECT_FALSE(CDevice().IsKindOf(CBalance::GetThisClass()));
    EXPECT_FALSE(balance.IsKindOf(nullptr));
    EXPECT_STREQ(balance.GetRuntimeClass()->m_lpszClassName, "Balance");
    EXPECT_EQ(balance.GetRuntimeClass()->m_wSchema, 3u);
    EXPECT_EQ(CObject::GetThisClass()->CreateObject(), nullptr);
}

TEST(Object, IsMadeByNameWhileItsClassIsRegistered) {
    EXPECT_EQ(CRuntimeClass::FromName("Balance"), nullptr);
    {
        const qel::RegisteredClass<CBalance> registered;
        std::optional<qel::RegisteredClass<CBalance>> twice(std::in_place);
        twice.reset();
        const CRuntimeClass* const found = CRuntimeClass::FromName("Balance");
        ASSERT_EQ(found, CBalance::GetThisClass());
        const std::unique_ptr<CObject> made(found->CreateObject());
        EXPECT_NE(dynamic_cast<CBalance*>(made.get()), nullptr);
    }
    EXPECT_EQ(CRuntimeClass::FromName("Balance"), nullptr);
}
