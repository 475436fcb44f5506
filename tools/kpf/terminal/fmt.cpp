// {fmt} for the tool, compiled here once. By its headers alone, as the library takes it so that its
// callers need no other file, every file that formats a text would compile all of {fmt} again: a
// fifth of the time that the tool takes to build.
#include <fmt/format.h>

// For Windows inline ones remain, and are made all the same: its linker takes no other function for
// one that the library has inline.
#ifdef _WIN32
#undef FMT_FUNC
#define FMT_FUNC inline __attribute__((used))
#endif
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

// What the header says is to be found elsewhere.
template void vformat_to(buffer<char>&, string_view, typename vformat_args<>::type, locale_ref);
template auto thousands_sep_impl<char>(locale_ref) -> thousands_sep_result<char>;
template auto decimal_point_impl(locale_ref) -> char;

}  // namespace detail
FMT_END_NAMESPACE
