#pragma once

// The public headers of the component store: users with passwords, over the core.
#include "qellib10/platform/crypto/password_cost.h"
#include "qellib10/store/password_rules.h"
#include "qellib10/store/user_store.h"
#include "qellib10/store/user_store_settings.h"
