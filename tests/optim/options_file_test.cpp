// The options-file reader on records held in memory: the search for BEGIN, the block, every INFORM code and
// every record written.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "optim/e04uc_options.h"
#include "optim/options_file.h"

namespace vek::optim {
namespace {

class OptionsFile : public ::testing::Test {
 protected:
  OptionsFile() : store(areas) { initialise(store); }

  // Reads `records` (then the end of the file, or a read error) as unit 7.
  int64_t read(std::vector<std::string> records, units::ReadStatus last = units::ReadStatus::end_of_file,
               int64_t unit = 7) {
    size_t next = 0;
    out.clear();
    return read_options_file(
        e04uc::family, store, unit, true,
        [&](std::string& r) {
          if (next == records.size()) return last;
          r = records[next++];
          return units::ReadStatus::ok;
        },
        [&](std::string_view r) { out.emplace_back(r); });
  }

  SaveAreas areas;
  e04uc::Store store;
  std::vector<std::string> out;
};

TEST_F(OptionsFile, BlockRead) {
  EXPECT_EQ(read({"Begin", "  Iter 100", "  Crash Tolerance 0.5 * half", "End", "Iter 7"}), kFileRead);
  EXPECT_EQ(out, (std::vector<std::string>{" OPTIONS file", " ------------", " Begin", "   Iter 100",
                                           "   Crash Tolerance 0.5 * half", " End"}));
  EXPECT_EQ(store.major_iterations(), 100);  // the record after END is not read
  EXPECT_EQ(store.crash_tolerance(), 0.5);
}

TEST_F(OptionsFile, SkippedRecordsAndBlocks) {
  EXPECT_EQ(read({"Skip", "junk record", "* a comment", "Skip", "BEGIN", "Iter 3", "END"}), kFileRead);
  EXPECT_EQ(out, (std::vector<std::string>{" OPTIONS file", " ------------", " BEGIN", " Iter 3", " END"}));
  EXPECT_EQ(store.major_iterations(), 3);
  // A block starts at any record whose first token is BEGIN.
  EXPECT_EQ(read({"SKIP", "begin, the second block", "Iter 4", "End"}), kFileRead);
  EXPECT_EQ(out, (std::vector<std::string>{" OPTIONS file", " ------------", " begin, the second block",
                                           " Iter 4", " End"}));
  EXPECT_EQ(store.major_iterations(), 4);
}

TEST_F(OptionsFile, ListingSwitches) {
  EXPECT_EQ(read({"BEGIN NOLIST", "Iter 5", "List", "Crash 0.25", "Nolist", "Banana", "END"}), kFileRead);
  EXPECT_EQ(out, (std::vector<std::string>{" Crash 0.25", " Nolist"}));
  EXPECT_EQ(store.major_iterations(), 5);
  EXPECT_EQ(store.crash_tolerance(), 0.25);
  EXPECT_FALSE(store.listing());
  // Listing starts as the caller says at every file, whatever the last one left.
  EXPECT_EQ(read({"Begin", "Banana", "End"}), kFileRead);
  EXPECT_EQ(out, (std::vector<std::string>{" OPTIONS file", " ------------", " Begin", " Banana",
                                           " XXX  Keyword not recognized:         BANANA", " End"}));
}

TEST_F(OptionsFile, UnitOutOfRange) {
  for (int64_t unit : {int64_t{-1}, int64_t{100}, INT64_MAX}) {
    EXPECT_EQ(read({"Begin", "Iter 5", "End"}, units::ReadStatus::end_of_file, unit), kUnitOutOfRange) << unit;
    EXPECT_TRUE(out.empty());
  }
  EXPECT_EQ(read({"Begin", "Iter 5", "End"}, units::ReadStatus::end_of_file, 0), kFileRead);
  EXPECT_EQ(read({"Begin", "Iter 6", "End"}, units::ReadStatus::end_of_file, 99), kFileRead);
  EXPECT_EQ(store.major_iterations(), 6);
}

TEST_F(OptionsFile, EndOfFileInsideBlock) {
  EXPECT_EQ(read({"Begin", "Iter 5"}), kEndInBlock);
  EXPECT_EQ(out, (std::vector<std::string>{" OPTIONS file", " ------------", " Begin", " Iter 5",
                                           " XXX  End-of-file encountered while processing an OPTIONS file on unit 7"}));
  EXPECT_EQ(store.major_iterations(), 5);  // what was read stays applied
  EXPECT_EQ(read({"Begin"}, units::ReadStatus::not_readable), kEndInBlock);
}

TEST_F(OptionsFile, NoBlockFound) {
  const std::vector<std::string> note{
      " XXX  End-of-file encountered while looking for an OPTIONS file on unit 7"};
  EXPECT_EQ(read({}), kNoBlock);
  EXPECT_EQ(out, note);
  EXPECT_EQ(read({"Skip", "Iter 5", "Skip"}), kNoBlock);
  EXPECT_EQ(out, note);
  EXPECT_EQ(read({}, units::ReadStatus::not_readable), kNoBlock);  // no file to read
  EXPECT_EQ(out, note);
  store.set_listing(false);
  EXPECT_EQ(read_options_file(e04uc::family, store, 7, false, [](std::string&) { return units::ReadStatus::end_of_file; },
                              [&](std::string_view r) { out.emplace_back(r); }),
            kNoBlock);
  EXPECT_EQ(out, note);  // nothing more: listing off
  EXPECT_EQ(store.major_iterations(), kMarker);
}

TEST_F(OptionsFile, EndRunFirst) {
  EXPECT_EQ(read({"Skip", "ENDRUN", "Begin", "Iter 5", "End"}), kEndRun);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(read({"endrun"}), kEndRun);
  EXPECT_EQ(store.major_iterations(), kMarker);
}

TEST_F(OptionsFile, FirstRecordWrong) {
  EXPECT_EQ(read({"Iter 5", "Begin", "Iter 9", "End"}), kFirstRecordWrong);
  EXPECT_EQ(out, (std::vector<std::string>{" XXX  Error while looking for an OPTIONS file on unit 7",
                                           " XXX  The file should start with BEGIN, SKIP or ENDRUN",
                                           " XXX  but the first record found was the following:",
                                           " Iter 5",
                                           " ---",
                                           " XXX  Continuing to look for OPTIONS file...",
                                           " OPTIONS file",
                                           " ------------",
                                           " Begin",
                                           " Iter 9",
                                           " End"}));
  EXPECT_EQ(store.major_iterations(), 9);  // the first record is not applied
  // The other outcomes take precedence over the remembered 5.
  EXPECT_EQ(read({"", "Begin", "Iter 9"}), kEndInBlock);
  EXPECT_EQ(read({"oops"}), kNoBlock);
  EXPECT_EQ(read({"oops", "Endrun"}), kEndRun);
}

TEST_F(OptionsFile, RecordsCutAt72) {
  const std::string record = "Major Iterations Limit" + std::string(48, ' ') + "12345";
  EXPECT_EQ(read({"Begin", record, "End"}), kFileRead);
  EXPECT_EQ(store.major_iterations(), 12);
  std::string echoed = " ";
  echoed += record.substr(0, 72);
  EXPECT_EQ(out[3], echoed);
}

}  // namespace
}  // namespace vek::optim
