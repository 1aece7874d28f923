#pragma once

#include "messages/CTheMsgHnd.h"
#include "messages/Export.h"

#include <cstdint>
#include <string>
#include <type_traits>

namespace VemoKesConfigTools {

/// Traces entry to and exit from the function in which it is a local variable. While debug is off, it only
/// stores its arguments.
class KES_API CDebugSentry {
public:
    CDebugSentry(CMessageHandler* handler, std::uint32_t line, const char* file, const char* function)
        : mpHandler(handler),
          mLine(line),
          mFile(file),
          mFunction(function),
          mExitPrinted(handler == nullptr || !CTheMsgHnd::DebugActivated()) {
        if (!mExitPrinted) TraceEntry();
    }
    CDebugSentry(const CDebugSentry&) = delete;
    CDebugSentry& operator=(const CDebugSentry&) = delete;
    virtual ~CDebugSentry() { CheckPrintExit(); }

protected:
    /// Prints the exit trace. The order of virtual slots is fixed: the destructor, then this.
    virtual void PrintExit();

    /// Prints the exit trace once. A derived class calls it in its own destructor: in that of the base class
    /// its override of `PrintExit` is no longer reached.
    void CheckPrintExit() {
        if (mExitPrinted) return;
        mExitPrinted = true;
        PrintExit();
    }

    CMessageHandler* mpHandler;
    std::uint32_t mLine;
    const char* mFile;
    const char* mFunction;
    bool mExitPrinted;

private:
    void TraceEntry();
};

/// A sentry whose exit trace also shows the function's result: bool, unsigned 32-bit, text, an enumeration,
/// or a record with a member `mCode`.
template <typename T>
class CDebugSentryWithReturn final : public CDebugSentry {
public:
    CDebugSentryWithReturn(CMessageHandler* handler, std::uint32_t line, const char* file,
                           const char* function, const T* result)
        : CDebugSentry(handler, line, file, function), mpResult(result) {}
    ~CDebugSentryWithReturn() override { CheckPrintExit(); }

protected:
    void PrintExit() override {
        if constexpr (std::is_same_v<T, bool>) {
            Print("<- %s [returning %s]", *mpResult ? "true" : "false");
        } else if constexpr (std::is_same_v<T, std::string>) {
            Print("<- %s [returning \"%s\"]", mpResult->c_str());
        } else if constexpr (std::is_same_v<T, std::wstring>) {
            std::string narrow;
            for (const wchar_t c : *mpResult) narrow.push_back(static_cast<char>(c));
            Print("<- %s [returning \"%s\"]", narrow.c_str());
        } else if constexpr (std::is_same_v<T, std::uint32_t>) {
            Print("<- %s [returning %lu]", static_cast<unsigned long>(*mpResult));
        } else if constexpr (std::is_enum_v<T>) {
            Print("<- %s [returning %d]", static_cast<int>(*mpResult));
        } else {
            Print("<- %s [returning %d]", static_cast<int>(mpResult->mCode));
        }
    }

private:
    template <typename V>
    void Print(const char* format, V value) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        mpHandler->DebugOutputInHandler(0, false, true, mFunction, mFile, mLine, format, mFunction, value);
#pragma GCC diagnostic pop
    }

    const T* mpResult;
};

}  // namespace VemoKesConfigTools
