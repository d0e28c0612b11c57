// What a service does that lets users in: no drawing, no printing.
#include <qellib10/store.h>

#include <cstdio>

int main() {
    std::remove("users.db");
    qel::UserStore store("users.db");
    store.Connect();
    const bool isIn = store.CreateFirstAdministrator("admin", "first") && store.Logon("Admin", "first");
    std::remove("users.db");
    return isIn ? 0 : 1;
}
