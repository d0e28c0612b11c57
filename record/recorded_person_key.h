#pragma once

#include <memory>
#include <string_view>

#include "qellib10/record/trail.h"

namespace qel {

/// A person's key whose start, end and password change by entries of the trail alone. With the file and the entries
/// made one by one, a crash in between leaves a key that nobody announced, or one announced that nobody has; and
/// whoever tries passwords is seen by nobody.
///
/// @code
/// qel::TrailSettings settings;
/// std::shared_ptr<qel::Signer> installation;
/// std::string first, forgotten;  // as somebody has typed them
///
/// qel::Trail trail(settings, installation);
/// if (trail.Open() == 0) return;
/// qel::RecordedPersonKey mori(trail, R"(\srv\keys\mori)");
/// if (mori.Make("mori", "Mori Akiko", first, "kato", "new colleague") == 0) return;
/// if (mori.ChangePassword("mori", first, "a better one") == 0) std::puts(qel::LastFailure().text.c_str());
/// if (mori.Reset("mori", "Mori Akiko", forgotten, "kato", "password forgotten") == 0) return;
/// @endcode
///
/// Make and Reset take these steps, each on the disk before the next one:
///
///     1. the new key in a file next to the one at the path, with ".next" in its name
///     2. an entry trail_kind::kPersonKeyChanging: who gives whom this key, and why
///     3. an entry "person key ended" for each key of the person, and "person key added" for the new one
///     4. the new key in its place
///
/// What is interrupted is settled by the next operation: after step 2 it is finished, before that nothing has
/// happened. So each key that was announced is on the disk. What an ended key has signed stays valid.
///
/// Operations return 1, or 0 and qel::LastFailure has the reason: its kind is kRefused where the person is the reason.
/// Paths are in the library's form, texts UTF-8. The trail must be open and outlive this object. One key's file belongs
/// to one trail. The first operation reads the whole trail. One thread at a time; other programs may do the same.
class QELLIB10_API RecordedPersonKey {
public:
    RecordedPersonKey(Trail& trail, std::string_view path);
    ~RecordedPersonKey();
    RecordedPersonKey(const RecordedPersonKey&) = delete;
    RecordedPersonKey& operator=(const RecordedPersonKey&) = delete;

    /// A person's first key. The file must not exist yet.
    /// @param user, printedName, password as for PersonKey::Make
    /// @param by who gives the key to the person; must be there, as @p reason
    /// @return 0 also if the trail knows a valid key of this user
    int Make(std::string_view user, std::string_view printedName, std::string_view password, std::string_view by,
             std::string_view reason);
    /// A new key in the place of one whose password was forgotten, or that is lost: also of a file that is damaged, or
    /// that others may read. The old one ends.
    /// @return 0 also if the trail knows no key of this user, or the file is another user's
    int Reset(std::string_view user, std::string_view printedName, std::string_view password, std::string_view by,
              std::string_view reason);
    /// Ends the person's keys without a new one. The file stays.
    int End(std::string_view user, std::string_view by, std::string_view reason);

    /// The key stays the same. An entry "password changed" comes first: the trail may say so although a full disk kept
    /// the old password. Each refusal is an entry "signature refused"; after three of them this object refuses all.
    /// @param user as somebody has typed it; it has to be the key's
    int ChangePassword(std::string_view user, std::string_view oldPassword, std::string_view newPassword);
    /// Whether three refusals have ended it.
    bool HasEnded() const noexcept;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
