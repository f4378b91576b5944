// A function as an algorithm's argument: two words, no allocation, no ownership. What it refers to
// must outlive it; a lambda written in the call does.
#pragma once

#include <concepts>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

namespace vexa {

template <class Signature>
class FunctionReference;

template <class Result, class... Arguments>
class FunctionReference<Result(Arguments...)> {
 public:
  // The copy is not hidden, and what is called keeps its constness in F.
  // NOLINTBEGIN(bugprone-forwarding-reference-overload,cppcoreguidelines-pro-type-const-cast)
  template <class F>
  requires(!std::same_as<std::remove_cvref_t<F>, FunctionReference> &&
           std::is_invocable_r_v<Result, F&, Arguments...>) FunctionReference(F&& function)
      : m_function(const_cast<void*>(static_cast<const void*>(std::addressof(function)))),
        m_call([](void* object, Arguments... arguments) -> Result {
          return (*static_cast<std::remove_reference_t<F>*>(object))(
              std::forward<Arguments>(arguments)...);
        }) {}
  // NOLINTEND(bugprone-forwarding-reference-overload,cppcoreguidelines-pro-type-const-cast)

  Result operator()(Arguments... arguments) const {
    return m_call(m_function, std::forward<Arguments>(arguments)...);
  }

 private:
  void* m_function;
  Result (*m_call)(void*, Arguments...);
};

// A function of one variable, and of several.
using RealFunction = FunctionReference<double(double)>;
using FieldFunction = FunctionReference<double(std::span<const double>)>;

}  // namespace vexa
