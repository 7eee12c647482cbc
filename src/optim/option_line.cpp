#include "optim/option_line.h"

#include <algorithm>
#include <array>
#include <string>

#include "frame/text.h"
#include "optim/option_text.h"

namespace vek::optim {
namespace {

void report(Areas store, const RecordSink& sink, std::string_view what, std::string_view token) {
  if (store.listing()) sink(std::string(what) + std::string(token));
}

// The cases of keyword `index`.
std::span<const Case> cases_of(const Family& family, int index) {
  const auto first = std::find_if(family.cases.begin(), family.cases.end(),
                                  [&](const Case& c) { return c.keyword == index; });
  const auto last = std::find_if(first, family.cases.end(), [&](const Case& c) { return c.keyword != index; });
  return {first, last};
}

// The cases asking for `second` (adjacent, as the generator orders them).
std::span<const Case> with_second(std::span<const Case> cases, int second) {
  const auto first = std::find_if(cases.begin(), cases.end(), [&](const Case& c) { return c.second == second; });
  const auto last = std::find_if(first, cases.end(), [&](const Case& c) { return c.second != second; });
  return {first, last};
}

// The group of cases the second token selects: a named second keyword, a number, nothing, anything.
std::span<const Case> select(std::span<const Case> cases, int second_index, std::string_view second) {
  if (second_index > 0) {
    const auto named = with_second(cases, second_index);
    if (!named.empty()) return named;
  }
  if (!second.empty() && is_numeric(second)) {
    const auto number = with_second(cases, kNumberSecond);
    if (!number.empty()) return number;
  }
  if (second.empty()) {
    const auto blank = with_second(cases, kBlankSecond);
    if (!blank.empty()) return blank;
  }
  return with_second(cases, kAnySecond);
}

Directive directive_of(Action a) {
  switch (a) {
    case Action::begin: return Directive::begin;
    case Action::end: return Directive::end;
    case Action::list: return Directive::list;
    case Action::nolist: return Directive::nolist;
    default: return Directive::none;
  }
}

// What a token names as a first keyword, for the token after BEGIN.
Directive directive_of_token(const Family& family, std::string token) {
  const int index = lookup(family.keywords, token);
  const auto cases = index > 0 ? cases_of(family, index) : std::span<const Case>();
  return cases.empty() ? Directive::none : directive_of(cases.front().action);
}

void store_subscripted(Areas store, const Case& c, double subscript, double value, const RecordSink& sink) {
  const int64_t i = truncate_to_int(subscript);
  if (i < 1 || i > kBlockLength) {
    report(store, sink, kSubscriptOutOfRange, " " + text::int_text(i));
    return;
  }
  if (c.action == Action::int_subscript) store.iprmls()[static_cast<size_t>(i - 1)] = truncate_to_int(value);
  else store.rprmls()[static_cast<size_t>(i - 1)] = value;
}

}  // namespace

void echo(std::string_view line, const RecordSink& sink) { sink(" " + std::string(line)); }

LineResult process_line(const Family& family, Areas store, std::string_view line, const RecordSink& sink) {
  if (store.reset_pending()) {
    store.reset();
    store.set_reset_pending(false);
  }
  std::array<std::string, kMaxTokens> tokens;
  const size_t count = tokenize(without_comment(option_line(line)), tokens, true);
  if (count == 0) return {};

  std::string keyword = tokens[0];
  const int index = lookup(family.keywords, keyword);
  if (index <= 0) {
    report(store, sink, index == 0 ? kKeywordNotRecognized : kAmbiguousKeyword, tokens[0]);
    return {};
  }

  // The numbers after the keyword: the value, or the subscript and the value.
  std::array<double, 2> numbers{0.0, 0.0};
  size_t found = 0;
  for (size_t i = 1; i < count && found < numbers.size(); ++i)
    if (is_numeric(tokens[i])) numbers[found++] = read_number(tokens[i]);

  std::string second = tokens[1];
  const int second_index = second.empty() ? 0 : lookup(family.seconds, second);
  const auto group = select(cases_of(family, index), second_index, tokens[1]);
  if (group.empty()) {
    report(store, sink, kSecondNotRecognized, tokens[1]);
    return {};
  }

  LineResult result;
  for (const Case& c : group) {
    switch (c.action) {
      case Action::begin:
        result.directive = Directive::begin;
        result.after_begin = directive_of_token(family, tokens[1]);
        break;
      case Action::end:
      case Action::list:
      case Action::nolist: result.directive = directive_of(c.action); break;
      case Action::defaults: store.reset(); break;
      case Action::int_subscript:
      case Action::real_subscript: store_subscripted(store, c, numbers[0], numbers[1], sink); break;
      case Action::store_int: store.iwsav(c.element) = truncate_to_int(c.constant ? c.value : numbers[0]); break;
      case Action::store_real: store.rwsav(c.element) = c.constant ? c.value : numbers[0]; break;
    }
  }
  return result;
}

void set_option(const Family& family, Areas store, std::string_view str, std::string_view routine, bool listing,
                const RecordSink& sink) {
  const std::string_view line = option_line(str);
  if (store.first_call()) {
    // The header waits for the line: a first line NOLIST prints nothing at all.
    store.set_first_call(false);
    const LineResult r = process_line(family, store, line, sink);
    store.set_listing(r.directive == Directive::list || (r.directive != Directive::nolist && listing));
    if (store.listing()) {
      const std::string header = "Calls to " + std::string(routine);
      sink(" " + header);
      sink(" " + std::string(header.size(), '-'));
      echo(line, sink);
    }
    return;
  }
  if (store.listing()) echo(line, sink);
  const LineResult r = process_line(family, store, line, sink);
  if (r.directive == Directive::list) store.set_listing(true);
  if (r.directive == Directive::nolist) store.set_listing(false);
}

}  // namespace vek::optim
