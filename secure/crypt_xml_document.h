#pragma once

#include <memory>
#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"

namespace qel {
class XmlDocument;
}

/// A document of settings or data: a tree of XML whose nodes are named by paths, in a file that is enciphered or plain.
/// It prevents documents that nobody can read again: text that is not well-formed, or a name with characters missing in
/// the code page, is refused when it is set or loaded, not found on the day when the method is needed. LockFile keeps
/// the file open from reading to saving; it does not keep out another program that does the same, and the last
/// LockCommit counts.
///
/// @code
/// CCryptXMLDocument method;
/// if (!method.LockFile("method.xml", 0, 1)) return;
/// if (method.GetXMLString().IsEmpty()) method.SetXMLString("<Method/>");
/// method.SetNodeText("Limits/Item[end()]", "7.0");
/// if (!method.LockCommit()) return;
/// @endcode
///
/// A path is XPath 1.0 from the root element, which it does not name: `Settings/Unit` is the child Unit of the root's
/// child Settings. Predicates count from 1, and `end()` is the last of the matching siblings. Prefixes are part of a
/// name. An attribute can be read, set and shown.
///
///     Item[2]    Item[@k='x']    Item[end()]    Item/@k
///
/// Text is in the code page of the process. Characters missing in it are kept as numeric references (`&#228;`) in the
/// text of the document, and returned as their best fit. XML that is not well-formed is refused; so are elements nested
/// deeper than 512, references to entities of a document type, and names with characters missing in the code page.
/// Nothing outside the document is read. A file of 2 GiB or more is neither loaded nor written. White space between
/// elements is kept; line ends are written as CR LF.
///
/// Files are written in place, once all bytes are ready, and are on the disk when the operation returns. A file that
/// could not be written is put back; a crash in the middle leaves a part of it. A caller who needs more saves under
/// another name and moves that file to its place. The key is a constant, so an enciphered file is protected from casual
/// readers and no more.
///
/// Operations return 1, or 0 when a file, a text or a path is missing or refused, or memory runs out; qel::LastFailure
/// says which. Nothing is thrown but std::bad_alloc, by construction and GetXMLString alone: an empty text would be a
/// document without a root. A text that is refused leaves the document empty. One thread at a time.
///
/// Kept as applications know it: after LockRollback the document counts as locked; see there.
class QELLIB10_API CCryptXMLDocument {
public:
    /// Empty, and enciphered when it is saved.
    CCryptXMLDocument();
    /// Rolls a lock back.
    virtual ~CCryptXMLDocument();
    CCryptXMLDocument(const CCryptXMLDocument&) = delete;
    CCryptXMLDocument& operator=(const CCryptXMLDocument&) = delete;

    /// Loads a file. In crypt mode it may be enciphered or plain, and others may have it open in any way; @p noWait has
    /// no effect. Without crypt mode it is plain, like LoadPlainXMLFile. An empty file is an empty document.
    virtual int LoadXMLFile(const char* path, int noWait);

    /// Saves to a file, which is created if missing. In crypt mode it is enciphered, nobody else may have it open, it
    /// does not wait, and an empty document leaves an empty file and returns 0. Without crypt mode it is plain, others
    /// may have it open, and it waits like FileOpen.
    virtual int SaveXMLFile(const char* path, int noWait);

    /// Opens a file, loads it, and keeps it open until LockCommit or LockRollback, so that the change happens within
    /// one opening. Others can open it in the same way; their loads without crypt mode are kept out.
    /// @param create not 0: creates an empty file if it is missing
    /// @return 0 also while locked. A file that cannot be loaded is closed again.
    virtual int LockFile(const char* path, int noWait, int create);

    /// Whether LockFile has succeeded and LockCommit has not been called since.
    virtual int IsLocked();

    /// Saves to the locked file and closes it.
    /// @return 0 if not locked, and if it could not be written; the lock then remains
    virtual int LockCommit();

    /// Closes the locked file without saving. The tree stays.
    ///
    /// Kept because applications know it: the document still counts as locked, LockFile and plain loads and saves by
    /// path refuse, and LockCommit returns 0. Use a new object.
    /// @return 0 if not locked
    virtual int LockRollback();

    /// 0: files are written plain. The mode is not a property of a file.
    void SetCryptMode(int crypt) { m_nCryptMode = crypt; }
    int IsCrypt() const { return m_nCryptMode; }

    /// Removes everything, including the root.
    void Empty();

    /// The document as text, without naming an encoding; empty if there is no root.
    CString GetXMLString() const;
    /// Replaces the document by text, which is in the code page whatever encoding it names.
    int SetXMLString(const char* text);

    /// Texts and sections in the first node of a path, joined; white space that only separates elements is left out.
    /// @return 0 if there is none; @p text does not change then
    int GetNodeText(const char* path, CString& text) const;
    /// The node as it is in the document's text.
    int GetNodeXml(const char* path, CString& xml) const;

    /// Replaces everything in the first node of a path by a text. Missing elements of the path are created, each as the
    /// last child; for a step with a predicate an element is added as the last of its name, whatever the predicate
    /// says: `Item[7]` creates one Item. Characters that XML cannot contain become `?`.
    /// @return 0 also for an empty document, and for a step that is not a name; elements created for steps before it
    /// stay
    int SetNodeText(const char* path, const char* text);

    /// The number of nodes of a path; -1 for an empty document and for an invalid path.
    long GetTagCount(const char* path) const;

    /// Removes the first node of a path and everything in it.
    int DeleteTag(const char* path);

protected:
    /// Loads or saves a plain file, refused while locked. Loading waits like FileOpen while somebody writes. Saving
    /// writes the document in the encoding that it names, and names it; the form with an open file writes UTF-8 and
    /// names none. @p noWait has no effect.
    virtual int LoadPlainXMLFile(const char* path, int noWait);
    virtual int SavePlainXMLFile(const char* path, int noWait);

    /// Resets to the state after construction, except that an active lock is rolled back, see there.
    int Initialize();

    /// Load from, or save to, an open file, which stays open. An enciphered file starts with a zero byte; any other is
    /// loaded as plain. A plain file that names an encoding is assumed to be in the code page, otherwise in UTF-8.
    ///
    /// Kept for files already in the field: it counts as naming an encoding if the word `encoding` is anywhere before
    /// the first `?>`. A document without declaration that has an instruction after that word is better kept
    /// enciphered.
    int LoadCryptXMLFile(CFile& file);
    int SaveCryptXMLFile(CFile& file);
    int LoadPlainXMLFile(CFile& file);
    int SavePlainXMLFile(CFile& file);

    /// Opens a file: @p kind 1 reading, others may not write; 2 reading and writing; 3 the same, created if missing; 4
    /// writing, created or emptied. If that fails and the file exists, it is tried again every 10 ms as long as it
    /// exists, unless @p noWait is not 0. Folders, pipes and devices are refused at once.
    static int FileOpen(CFile& file, const char* path, int kind, int noWait);

    /// Text of the code page in UTF-8 and back, each UTF-16 unit by itself: characters above U+FFFF take six bytes,
    /// kept for files already in the field. In the other direction continuation bytes are not checked, and forms of
    /// four bytes are read as well.
    static CString ConvertToUTF8(const char* text);
    static CString ConvertFromUTF8(const char* text);

    /// Removes and returns the part before the first @p separator; the separator is removed too. All of it if there is
    /// none.
    static CString Split(CString& text, char separator);

private:
    std::string EncipheredBytes() const;
    std::string PlainBytes() const;

    std::unique_ptr<qel::XmlDocument> m_pDocument;
    int m_nCryptMode = 1;
    CString m_szKey;
    int m_nLocked = 0;
    CFile m_fileLock;  // open while locked
};

/// Builds paths for CCryptXMLDocument.
class QELLIB10_API CCryptXMLDocumentObject {
public:
    /// "A" and "B" make "A/B", as do "A/" and "B"; "" and "B" make "B".
    static CString AppendNode(const char* path, const char* node);
    /// "Item" and "2" make "Item[2]".
    static CString AppendNodeKey(const char* node, const char* key);
};
