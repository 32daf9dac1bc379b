// The exception family: thrown by value, caught by reference as the framework type
// or as std::exception; message copies that never overrun the caller's buffer; the
// cause numbers of the original; operating-system errors mapped to file causes.
#include <corlith/framework/Exceptions.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <functional>
#include <string>

namespace {

struct Thrower {
  const char* name;
  std::function<void()> raise;
};

const Thrower kThrowers[] = {
    {"invalid argument", [] { AfxThrowInvalidArgException(); }},
    {"memory", [] { AfxThrowMemoryException(); }},
    {"not supported", [] { AfxThrowNotSupportedException(); }},
    {"archive", [] { AfxThrowArchiveException(CArchiveException::endOfFile, "doc.bin"); }},
    {"file", [] { AfxThrowFileException(CFileException::diskFull, ENOSPC, "out.txt"); }},
    {"file from errno", [] { CFileException::ThrowOsError(ENOENT, "gone.txt"); }},
};

TEST(ExceptionCatch, EveryExceptionIsACExceptionAndAStdException) {
  for (const Thrower& t : kThrowers) {
    SCOPED_TRACE(t.name);
    std::string viaFramework;
    try {
      t.raise();
    } catch (const CException& e) {
      viaFramework = e.what();
      char buffer[256];
      ASSERT_TRUE(e.GetErrorMessage(buffer, sizeof buffer));
      EXPECT_EQ(viaFramework, buffer);
    }
    EXPECT_FALSE(viaFramework.empty());

    std::string viaStd;
    try {
      t.raise();
    } catch (const std::exception& e) {
      viaStd = e.what();
    }
    EXPECT_EQ(viaStd, viaFramework);
  }
}

TEST(ExceptionCatch, DerivedTypesCarryTheirDetails) {
  try {
    AfxThrowArchiveException(CArchiveException::badSchema, "doc.bin");
  } catch (const CArchiveException& e) {
    EXPECT_EQ(e.m_cause, CArchiveException::badSchema);
    EXPECT_EQ(e.m_strFileName, "doc.bin");
    EXPECT_NE(std::string(e.what()).find("doc.bin"), std::string::npos);
  }
  try {
    CFileException::ThrowOsError(EACCES, "locked.txt");
  } catch (const CFileException& e) {
    EXPECT_EQ(e.m_cause, CFileException::accessDenied);
    EXPECT_EQ(e.m_lOsError, EACCES);
    EXPECT_EQ(e.m_strFileName, "locked.txt");
  }
  // A message is distinct per cause, so a report says what went wrong.
  EXPECT_STRNE(CArchiveException(CArchiveException::endOfFile).what(),
               CArchiveException(CArchiveException::readOnly).what());
  EXPECT_STRNE(CFileException(CFileException::fileNotFound).what(),
               CFileException(CFileException::diskFull).what());
  // Out-of-range causes still give a message rather than reading past the table.
  EXPECT_GT(std::strlen(CArchiveException(99).what()), 0u);
  EXPECT_GT(std::strlen(CFileException(-5).what()), 0u);
}

TEST(ExceptionMessage, GetErrorMessageTruncatesAndTerminates) {
  const CInvalidArgException e;
  const std::string full = e.what();
  ASSERT_GT(full.size(), 5u);

  struct Row {
    UINT max;
    std::string expected;
  };
  const Row rows[] = {
      {1, ""},
      {2, full.substr(0, 1)},
      {5, full.substr(0, 4)},
      {static_cast<UINT>(full.size()), full.substr(0, full.size() - 1)},
      {static_cast<UINT>(full.size() + 1), full},
      {200, full},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.max);
    char buffer[256];
    std::memset(buffer, 'Z', sizeof buffer);
    UINT help = 12345;
    EXPECT_TRUE(e.GetErrorMessage(buffer, row.max, &help));
    EXPECT_EQ(std::string(buffer), row.expected);
    // Nothing written past the terminator.
    EXPECT_EQ(buffer[row.expected.size() + 1], 'Z');
    EXPECT_EQ(help, 0u);
  }

  char untouched[4] = {'Z', 'Z', 'Z', 'Z'};
  EXPECT_FALSE(e.GetErrorMessage(untouched, 0));
  EXPECT_EQ(untouched[0], 'Z');
  EXPECT_FALSE(e.GetErrorMessage(nullptr, 10));
}

// The numbers are those of the original, which callers compare and log.
static_assert(CArchiveException::none == 0 && CArchiveException::genericException == 1 &&
              CArchiveException::readOnly == 2 && CArchiveException::endOfFile == 3 &&
              CArchiveException::writeOnly == 4 && CArchiveException::badIndex == 5 &&
              CArchiveException::badClass == 6 && CArchiveException::badSchema == 7 &&
              CArchiveException::bufferFull == 8);
static_assert(CFileException::fileNotFound == 2 && CFileException::accessDenied == 5 &&
              CFileException::badSeek == 9 && CFileException::diskFull == 13 &&
              CFileException::endOfFile == 14);

TEST(ExceptionCause, OsErrorsMapToFileCauses) {
  struct Row {
    LONG error;
    int cause;
  };
  const Row rows[] = {
      {0, CFileException::none},
      {ENOENT, CFileException::fileNotFound},
      {EACCES, CFileException::accessDenied},
      {EPERM, CFileException::accessDenied},
      {ENOSPC, CFileException::diskFull},
      {ENOTDIR, CFileException::badPath},
      {ENAMETOOLONG, CFileException::badPath},
      {EMFILE, CFileException::tooManyOpenFiles},
      {EBADF, CFileException::invalidFile},
      {EIO, CFileException::hardIO},
      {ESPIPE, CFileException::badSeek},
      {999999, CFileException::genericException},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.error);
    EXPECT_EQ(CFileException::OsErrorToException(row.error), row.cause);
  }
}

}  // namespace
