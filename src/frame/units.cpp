#include "frame/units.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <new>
#include <string>

#include "frame/console.h"
#include "frame/text.h"

namespace vek::units {
namespace {

std::atomic<int64_t> g_error_unit{kConsole};
std::atomic<int64_t> g_advisory_unit{kConsole};

struct OpenFile {
  std::FILE* file;
  Mode mode;
};

// The file table is guarded so that a badly behaved caller (two threads opening units at once) cannot corrupt
// it; the unit numbers above are plain settings, as documented.
std::mutex g_files_mutex;
// Never destroyed, as a thread may still write a record while another stops the process; built in static
// storage rather than from the heap, so that nothing allocated stays behind.
template <class T>
T& immortal() {
  alignas(T) static unsigned char storage[sizeof(T)];
  static T* object = new (storage) T;
  return *object;
}

std::map<int64_t, OpenFile>& files() { return immortal<std::map<int64_t, OpenFile>>(); }

bool is_console(int64_t unit) { return unit == 0 || unit == kConsole; }

}  // namespace

int64_t error_unit() { return g_error_unit.load(std::memory_order_relaxed); }
void set_error_unit(int64_t unit) { g_error_unit.store(unit, std::memory_order_relaxed); }
int64_t advisory_unit() { return g_advisory_unit.load(std::memory_order_relaxed); }
void set_advisory_unit(int64_t unit) { g_advisory_unit.store(unit, std::memory_order_relaxed); }

bool open(int64_t unit, std::string_view path, Mode mode) {
  if (unit < 0) return false;
  const std::string name(text::trim_right(path.substr(0, path.find('\0'))));
  if (name.empty()) return false;
  static constexpr const char* kModes[] = {"r", "w", "a"};
  std::FILE* f = std::fopen(name.c_str(), kModes[static_cast<int>(mode)]);
  if (f == nullptr) return false;
  std::lock_guard lock(g_files_mutex);
  auto [it, inserted] = files().try_emplace(unit, OpenFile{f, mode});
  if (!inserted) {
    std::fclose(it->second.file);
    it->second = OpenFile{f, mode};
  }
  return true;
}

bool close(int64_t unit) {
  std::lock_guard lock(g_files_mutex);
  auto it = files().find(unit);
  if (it == files().end()) return true;
  const bool ok = std::fclose(it->second.file) == 0;
  files().erase(it);
  return ok;
}

std::unique_lock<std::recursive_mutex> hold_output() { return std::unique_lock(immortal<std::recursive_mutex>()); }

void write_record(int64_t unit, std::string_view record) {
  if (unit < 0) return;
  std::string_view body = text::trim_right(record);
  // A blank record is written as one blank; trailing NULs count as blanks.
  if (body.empty()) body = " ";
  const auto output = hold_output();
  if (!is_console(unit)) {
    std::lock_guard lock(g_files_mutex);
    auto it = files().find(unit);
    if (it != files().end() && it->second.mode != Mode::read) {
      console::put_line(it->second.file, body);
      return;
    }
  }
  console::write_line(body);
}

ReadStatus read_record(int64_t unit, std::string& record) {
  record.clear();
  std::lock_guard lock(g_files_mutex);
  std::FILE* f = nullptr;
  auto it = files().find(unit);
  if (it != files().end()) f = it->second.mode == Mode::read ? it->second.file : nullptr;
  else if (unit == 5) f = stdin;
  if (f == nullptr) return ReadStatus::not_readable;
  int c = std::fgetc(f);
  if (c == EOF) return ReadStatus::end_of_file;
  while (c != EOF && c != '\n') {
    record.push_back(static_cast<char>(c));
    c = std::fgetc(f);
  }
  if (!record.empty() && record.back() == '\r') record.pop_back();
  return ReadStatus::ok;
}

void flush_all() {
  std::lock_guard lock(g_files_mutex);
  for (auto& [unit, f] : files()) std::fflush(f.file);
  std::fflush(stdout);
}

}  // namespace vek::units
