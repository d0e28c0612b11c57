#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "qellib10/base/guid.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/types.h"

namespace qel {

/// A part of a damaged cabinet's file.
struct QELLIB10_API CabinetPiece {
    enum class State {
        kWhole,     ///< a version: its place in the file says which one, its data match both checksums
        kUnplaced,  ///< data that match both checksums of a version's header, but which version it is is not certain:
                    ///< it may also belong to a document that is a cabinet itself
        kChanged,   ///< a version in its place whose data do not match
        kCut,       ///< a version that the file ends within
        kLost,      ///< one or more versions that are not found; `size` is 0 where the file ends before them
        kRest       ///< bytes after the latest version, such as those of a registration that was interrupted
    };

    State state = State::kLost;
    DWORD number = 0;      ///< of the version, or of the first that is lost; of kUnplaced as its header says
    DWORD lastNumber = 0;  ///< of the last one that is lost, or 0 when not known; else the same
    ULONGLONG at = 0;      ///< where it starts in the file, header included
    ULONGLONG dataAt = 0;  ///< where its data start; 0 without
    ULONGLONG size = 0;    ///< of its data; without data of the part
    DWORD sum = 0;         ///< according to its header
    DWORD crc = 0;

    /// Whether its data are those of a version, by their checksums.
    bool HasData() const noexcept { return state == State::kWhole || state == State::kUnplaced; }
};

/// Finds the versions of a cabinet that CHistoryCabinetFile and CabinetReader no longer open, or only up to the first
/// damage, and says what is lost. Nobody has to guess where versions are in a damaged file, or takes the version of a
/// cabinet that is kept as a document for one of this cabinet.
///
/// @code
/// const CFile file("damaged.hcf", CFile::modeRead | CFile::shareDenyWrite);
/// qel::CabinetSalvage salvage(file);
/// while (const std::optional<qel::CabinetPiece> piece = salvage.Next()) {
///     if (piece->state != qel::CabinetPiece::State::kWhole) continue;
///     CFile target("version.dat", CFile::modeCreate | CFile::modeWrite);
///     if (!salvage.CopyData(*piece, target.WritableDescriptor(), "version.dat")) return;  // other bytes than before
/// }
/// @endcode
///
/// A version is found by its place (after the one before, or by a chain of versions up to the one that an intact
/// header names) and not by its header alone, which has no checksum. So a damaged number, tag or size does not
/// matter as long as the data match, and where one header is destroyed the later versions are found again. The file is
/// read in blocks, and is never written; any size takes the same memory, and time in proportion to its length. What the
/// disk refuses to read counts as zeros.
///
/// Operations throw CFileException where the file is closed or the target cannot be written. One thread at a time.
class QELLIB10_API CabinetSalvage {
public:
    /// @param cabinet open for reading; it must outlive this object, and its position does not change
    explicit CabinetSalvage(const CFile& cabinet);
    ~CabinetSalvage();

    /// Whether the cabinet's header was right: only then the number of its versions is known, and what comes after.
    bool HasHeader() const noexcept;
    /// The next part of the file, in their order; nothing at the end. Whole versions are in the order of their numbers.
    std::optional<CabinetPiece> Next();
    /// Writes the data of a piece to the position of @p target. @param name what exceptions call it
    /// @return false for a piece without data, and when what was read now does not match the checksums
    bool CopyData(const CabinetPiece& piece, const Descriptor& target, std::string_view name) const;
    /// The cabinet's own, if the header is right, or is it with the count and the place of the versions that were
    /// found: then ask after the last piece.
    std::optional<CGuid> Guid() const;
    /// Bytes that could not be read so far.
    ULONGLONG UnreadableBytes() const noexcept;
    /// Whether places where versions may be were passed over, since looking at all would take too long: the file has
    /// very many headers of versions that are none.
    bool HasGivenUp() const noexcept;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// A new cabinet from the versions of a damaged one. They keep their numbers, so it ends before the first that is
/// missing. Nobody sees the file before Commit.
class QELLIB10_API SalvagedCabinet {
public:
    /// @param path of a file that does not exist. @throws CFileException
    explicit SalvagedCabinet(std::string_view path);
    ~SalvagedCabinet();

    /// Appends the version, if it is whole and the next one.
    /// @return whether it was appended. @throws CFileException; DataError where the disk gives other bytes than before,
    /// and where the cabinet would reach 4 GiB
    bool Add(const CabinetSalvage& salvage, const CabinetPiece& piece);
    DWORD Versions() const noexcept;
    /// Flushes the file and gives it its name. Without versions, none is made.
    /// @throws CFileException 80 if there is such a file now
    void Commit(const CGuid& guid);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
