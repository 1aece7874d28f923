#pragma once

#include "messages/CMessageHandlerObserver.h"
#include "messages/Export.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// Reports messages of one group. All handlers share one error store, one paragraph string and one set of
/// observers: an error stored through one handler is visible through all. Handlers are created by
/// `CTheMsgHnd` and live until the process ends. All operations are thread-safe.
class KES_API CMessageHandler {
public:
    /// The source of a message. Groups not listed here share the handler of `GROUP_DEFAULT`.
    enum GroupEnum : std::int32_t {
        GROUP_MANAGED_API = 6,   ///< entry traces of the host API
        GROUP_KESTEXT = 26,      ///< text reader and writer
        GROUP_STRINGUTIL = 103,  ///< string utilities
        GROUP_DEFAULT = 120,     ///< errors of the host API and everything without a group of its own
        GROUP_ANY = 121          ///< as an argument only: every group
    };

    enum StatusLevels : std::int32_t {
        STATUS_LEVEL_ERROR = 0,
        STATUS_LEVEL_WARNING = 1,
        STATUS_LEVEL_INFO = 2
    };

    explicit CMessageHandler(GroupEnum group) noexcept : mGroup(group) {}
    CMessageHandler(const CMessageHandler&) = delete;
    CMessageHandler& operator=(const CMessageHandler&) = delete;

    /// Stores an error; once 1,000 are stored, each new one displaces the oldest. Number 0 means invalid data
    /// or an invalid argument, number 1 a missing plug-in or capability.
    bool SetErrorMsg(std::int16_t number, const std::string& text);
    /// Changes the newest error to `TEXT: OLD TEXT` with the new number and notifies the observers. Returns
    /// false if no error is stored.
    bool ModifyErrorMsg(std::int16_t number, const std::string& text, GroupEnum group);
    /// Whether any error of any group is stored. The arguments have no effect.
    bool IsErrorSet(GroupEnum group, bool all) const;
    /// Returns the newest error, which stays stored. Returns false and leaves the arguments unchanged if no
    /// error is stored.
    bool LastError(std::int16_t& number, std::string& text, GroupEnum& group) const;
    /// Clears the errors of all groups; the argument has no effect.
    void ClearError(GroupEnum group);

    /// Passes a status report, which is not an error, to the observers.
    void NotifyStatus(StatusLevels level, const std::string& text);
    /// Passes a finding in a text to the observers. It is not stored.
    void NotifyFinding(const TextFinding& finding);
    /// Tells the observers how many bytes of a text have been read.
    void NotifyProgress(std::uint64_t bytes);

    /// The text between the paragraphs of a long message, shared by all handlers; initially a newline.
    void SetParagraphString(const std::string& text);
    std::string GetParagraphString() const;

    /// Passes one line of the debug trace to the observers. Call it only if `CTheMsgHnd::DebugActivated()`.
    /// `level` is 1 to 3 for lines of a module and 0 for entry to and exit from a function; `isExit` marks
    /// the exit.
    void DebugOutputInHandler(std::uint32_t level, bool reserved, bool isExit, const char* function,
                              const char* file, std::uint32_t line, const char* format, ...) KES_PRINTF(8, 9);

private:
    GroupEnum mGroup;
};

}  // namespace VemoKesConfigTools
