// "Go on with the next statement": one host statement per call; a failed one is skipped, leaves its target untouched
// and a line in the trace. Catches host::Error only.
#pragma once

#include <optional>
#include <type_traits>
#include <utility>

#include "host/Error.h"
#include "host/ITrace.h"

namespace kestrum::host {

class ResumeNext {
  public:
    explicit ResumeNext(ITrace& trace) : m_trace(trace) {}

    /// Runs `statement`; false if it failed.
    template <class Statement>
    bool operator()(Statement&& statement) const {
        try {
            std::forward<Statement>(statement)();
            return true;
        } catch (const Error& error) {
            m_trace.Skipped(error);
            return false;
        }
    }

    /// `target` = `expression`(); keeps `target` if that fails. False if it failed.
    template <class Target, class Expression>
    bool Set(Target& target, Expression&& expression) const {
        return (*this)([&] { target = std::forward<Expression>(expression)(); });
    }

    /// The value of `condition`; a condition that fails counts as false.
    template <class Condition>
    bool If(Condition&& condition) const {
        bool value = false;
        (*this)([&] { value = static_cast<bool>(std::forward<Condition>(condition)()); });
        return value;
    }

  private:
    ITrace& m_trace;
};

}  // namespace kestrum::host
