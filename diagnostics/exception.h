// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception_base.h"

#include <QHash>

namespace havrel {

/// Keys of the facts that an exception carries. Keys that begin with "." are private: they steer behaviour and stay
/// out of the description.
namespace detail_key {
inline constexpr QLatin1StringView kPOSIXErr{"POSIXErr"};
inline constexpr QLatin1StringView kErrDescription{"ErrDescription"};
inline constexpr QLatin1StringView kOSErr{"OSErr"};
inline constexpr QLatin1StringView kOSErrName{"OSErrName"}; ///< reserved
inline constexpr QLatin1StringView kAPI{"API"};
inline constexpr QLatin1StringView kObject{"Object"};
inline constexpr QLatin1StringView kPath{"Path"};
inline constexpr QLatin1StringView kName{"Name"};
inline constexpr QLatin1StringView kType{"Type"};
inline constexpr QLatin1StringView kFile{"File"};
inline constexpr QLatin1StringView kFolder{"Folder"};
inline constexpr QLatin1StringView kPkgType{"PkgType"};
inline constexpr QLatin1StringView kPkgNumber{"PkgNumber"};
inline constexpr QLatin1StringView kPosition{"Position"};
inline constexpr QLatin1StringView kPhysicalPosition{"Physical Position"};
inline constexpr QLatin1StringView kExpected{"Expected"};
inline constexpr QLatin1StringView kClass{"Class"};
inline constexpr QLatin1StringView kMessage{"Message"};
inline constexpr QLatin1StringView kVersion{"Version"};
inline constexpr QLatin1StringView kCause{"Cause"};
inline constexpr QLatin1StringView kLength{"Length"};
inline constexpr QLatin1StringView kDescription{"Description"};
inline constexpr QLatin1StringView kError{"Error"};
inline constexpr QLatin1StringView kWrappedError{".Error"};
inline constexpr QLatin1StringView kLogClass{".LogClass"};
inline constexpr QLatin1StringView kExplain{".Explain"};
inline constexpr QLatin1StringView kSoftError{".SoftError"};
inline constexpr QLatin1StringView kHelp{".Help"}; ///< a help anchor, only read
} // namespace detail_key

/// Names with a meaning; any other is allowed.
namespace exception_name {
inline constexpr QLatin1StringView kIO{"IO"};
inline constexpr QLatin1StringView kBug{"Bug"};
} // namespace exception_name

/// Classification by key text.
using UserInfoLogClassifications = QHash<QString, LogClassification>;

/// What setContent needs of an open content stream.
class ContentSource
{
public:
    ContentSource() = default;
    virtual ~ContentSource() = default;
    ContentSource(const ContentSource&) = delete;
    ContentSource& operator=(const ContentSource&) = delete;
    ContentSource(ContentSource&&) = delete;
    ContentSource& operator=(ContentSource&&) = delete;

    /// Path of the item that holds the content, as text. \selector pathObject
    [[nodiscard]] virtual QString pathObject() const = 0;
    /// Where bytes \p from up to but not including \p to lie: the physical position of the first, in bytes.
    /// \selector physicalAllocationAtPosition:to:
    [[nodiscard]] virtual qint64 physicalAllocationAtPosition(qint64 from, qint64 to) const = 0;
};

/// The one structured exception: a category word, a sentence for people, and facts under a fixed vocabulary of keys.
///
/// Made by a factory, filled by setters that answer the receiver, then raised:
/// \code
/// HVException::ioErrno(error, QStringLiteral("cannot delete item")).setPathObject(*this).raise();
/// \endcode
/// The facts are one dictionary, which is the exception's user-info: setters change it in place, also for copies.
/// A setter never raises; nil is stored as "(nil)", and a later value of the same key replaces the earlier one.
/// Not to be changed once raised.
///
/// Threads: one thread at a time until raised, then const members any thread.
class HVException : public Exception
{
public:
    /// \selector initWithName:reason:
    HVException(const QString& name, const QString& reason);

    /// \selector exceptionWithName:reason:
    [[nodiscard]] static HVException exceptionWithName(const QString& name, const QString& reason);
    /// One with setError applied. \selector error:name:reason:
    [[nodiscard]] static HVException error(const Error& error, const QString& name, const QString& reason);
    /// One with setPOSIXErr of the thread's errno, read before anything else. \selector errnoWithName:reason:
    /// Use the overload with a value where anything can happen between the failure and this call.
    [[nodiscard]] static HVException errnoWithName(const QString& name, const QString& reason);
    [[nodiscard]] static HVException errnoWithName(int errnoValue, const QString& name, const QString& reason);
    /// errnoWithName with the name "IO". \selector ioErrnoWithReason:
    [[nodiscard]] static HVException ioErrno(const QString& reason);
    [[nodiscard]] static HVException ioErrno(int errnoValue, const QString& reason);

    /// \selector preferredLogClassForName:
    [[nodiscard]] static LogClassification preferredLogClassForName(const QString& name);
    /// preferredLogClass of an `HVException`, else Failure. \selector preferredLogClassForException:
    [[nodiscard]] static LogClassification preferredLogClassForException(const Exception& exception);
    /// "Data", "List" ...; "Unknown(5)" for a number without a name. \selector getNameForPackageType:
    [[nodiscard]] static QString getNameForPackageType(unsigned type);
    /// The classification at which each key is logged; other keys at Details. \selector userInfoLogClassifications
    [[nodiscard]] static const UserInfoLogClassifications& userInfoLogClassifications();

    /// The facts: the user-info itself, for code that has no setter for what it wants to say.
    [[nodiscard]] QVariantMap& details() { return mutableUserInfo(); }
    /// The value under \p key; nil when there is none.
    [[nodiscard]] QVariant detail(const QString& key) const;

    HVException& setDetail(const QVariant& value, const QString& key); ///< \selector setDetail:key:
    HVException& setHexDetail(quint64 value,
                              const QString& key); ///< at least 4 digits, 8 from 65536 on. \selector setHexDetail:key:
    HVException& setLongLongHexDetail(quint64 value,
                                      const QString& key); ///< at least 16 digits. \selector setLongLongHexDetail:key:
    HVException& setDecimalDetail(qint64 value, const QString& key);  ///< \selector setDecimalDetail:key:
    HVException& setLongLongDetail(qint64 value, const QString& key); ///< \selector setLongLongDetail:key:
    HVException& setPOSIXErr(int errnoValue);                     ///< number and English text. \selector setPOSIXErr:
    HVException& setPOSIXErr(int errnoValue, const QString& api); ///< \selector setPOSIXErr:api:
    HVException& setError(const std::optional<Error>& error);     ///< nothing for nullopt. \selector setError:
    HVException& setAPI(const QString& api);                      ///< \selector setAPI:
    HVException& setFile(const QVariant& file);                   ///< \selector setFile:
    HVException& setFolder(const QVariant& folder);               ///< \selector setFolder:
    HVException& setObject(const QVariant& object);               ///< \selector setObject:
    HVException& setStrPath(const QString& path);                 ///< a null string is nil. \selector setStrPath:
    HVException& setExpected(const QVariant& expected);           ///< \selector setExpected:
    HVException& setClass(const QString& className);              ///< \selector setClass:
    HVException& setCause(const std::optional<Exception>& cause); ///< \selector setCause:
    HVException& setExplanation(const QString& explanation);      ///< \selector setExplanation:
    /// At most the first 1024 bytes of a file-system path; nothing for a null pointer. \selector setCPath:
    HVException& setCPath(const char* path);
    HVException& setFilePosition(qint64 position); ///< \selector setFilePosition:
    HVException& setLength(qint64 length);         ///< \selector setLength:
    HVException& setPackageType(unsigned type);    ///< \selector setPackageType:
    HVException& setPackageNumber(qint64 number);  ///< \selector setPackageNumber:
    /// Path, position and physical position (0 without content). What the content raises is swallowed.
    /// \selector setContent:position:
    HVException& setContent(const ContentSource* content, qint64 position);
    HVException& setClassOf(const QVariant& object);                          ///< \selector setClassOf:
    HVException& setMessage(const QString& selector);                         ///< \selector setMessage:
    HVException& setMessage(const QString& selector, const QVariant& object); ///< \selector setMessage:toObject:
    HVException& setVersion(quint32 buildVersion);                            ///< \selector setVersion:
    HVException& setPreferredLogClass(LogClassification classification);      ///< \selector setPreferredLogClass:
    HVException& setSoft(bool soft);                                          ///< \selector setSoft:
    HVException& setFlag(const QString& key);                                 ///< \selector setFlag:
    HVException& clearFlag(const QString& key);                               ///< the key stays. \selector clearFlag:

    /// The object's path (anything with a path() text). \selector setPathObject:
    template<class Located>
    HVException& setPathObject(const Located& object)
    {
        return setStrPath(object.path());
    }
    /// Name, path and type of a file-information object (anything with name(), path() and type()).
    /// \selector setFileInfo:
    template<class Info>
    HVException& setFileInfo(const Info& info)
    {
        return setFileFacts(info.name(), info.path(), static_cast<int>(info.type()));
    }
    /// Number and type of a package record (anything with number() and type()). \selector setPackageInfo:
    template<class Info>
    HVException& setPackageInfo(const Info& info)
    {
        setPackageNumber(static_cast<qint64>(info.number()));
        return setPackageType(static_cast<unsigned>(info.type()));
    }

    /// \selector preferredLogClass
    [[nodiscard]] LogClassification preferredLogClass() const;
    [[nodiscard]] bool isSoft() const;                      ///< \selector isSoft
    [[nodiscard]] bool isHard() const { return !isSoft(); } ///< \selector isHard
    /// Absent: false; a number: whether it is not zero; anything else: true. \selector hasFlag:
    [[nodiscard]] bool hasFlag(const QString& key) const;

private:
    friend class Exception;
    explicit HVException(const Exception& same);
    HVException& setFileFacts(const QString& name, const QString& path, int type);
};

} // namespace havrel
