#include "tests/unit/support/capture.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace korvex {

namespace {

#ifdef _WIN32
int Duplicate(int descriptor) {
  return _dup(descriptor);
}
void Redirect(int from, int descriptor) {
  _dup2(from, descriptor);
}
void Close(int descriptor) {
  _close(descriptor);
}
int DescriptorOf(std::FILE* file) {
  return _fileno(file);
}
/// The streams are in text mode, so each line end has grown a carriage return on its way.
constexpr bool kHasTextMode = true;
#else
int Duplicate(int descriptor) {
  return dup(descriptor);
}
void Redirect(int from, int descriptor) {
  dup2(from, descriptor);
}
void Close(int descriptor) {
  close(descriptor);
}
int DescriptorOf(std::FILE* file) {
  return fileno(file);
}
constexpr bool kHasTextMode = false;
#endif

/// A temporary file; asked for again for a while, as processes that ask for one at the same time can be given one name.
std::FILE* OpenTemporaryFile() {
  constexpr int kAttempts = 100;
  for (int attempt = 1; attempt < kAttempts; ++attempt) {
    std::FILE* file = std::tmpfile();
    if (file != nullptr) {
      return file;
    }
  }
  throw std::runtime_error("no temporary file for captured output");
}

/// A stream of the process that goes to a file of its own until `Finish`, or until this object goes.
class RedirectedStream {
public:
  explicit RedirectedStream(std::FILE* stream) : m_stream(stream), m_file(OpenTemporaryFile()) {
    std::fflush(m_stream);
    m_before = Duplicate(DescriptorOf(m_stream));
    Redirect(DescriptorOf(m_file), DescriptorOf(m_stream));
  }
  RedirectedStream(const RedirectedStream&) = delete;
  RedirectedStream& operator=(const RedirectedStream&) = delete;
  ~RedirectedStream() {
    PutBack();
    std::fclose(m_file);
  }

  std::string Finish() {
    PutBack();
    std::rewind(m_file);
    std::string text;
    for (int byte = std::fgetc(m_file); byte != EOF; byte = std::fgetc(m_file)) {
      if (kHasTextMode && byte == '\n' && !text.empty() && text.back() == '\r') {
        text.pop_back();
      }
      text.push_back(static_cast<char>(byte));
    }
    return text;
  }

private:
  void PutBack() {
    if (m_before >= 0) {
      std::fflush(m_stream);
      Redirect(m_before, DescriptorOf(m_stream));
      Close(m_before);
      m_before = -1;
    }
  }

  std::FILE* m_stream;
  std::FILE* m_file;
  int m_before = -1;
};

/// Keeps what was printed for the message coverage, in builds that look at it.
void KeepPrinted([[maybe_unused]] const char* file, [[maybe_unused]] const std::string& text) {
#ifdef KORVEX_PRINTED_DIR
  std::ofstream(std::string(KORVEX_PRINTED_DIR "/") + file, std::ios::app | std::ios::binary) << text + "\n";
#endif
}

} // namespace

CapturedOutput Capture(const std::function<void()>& action) {
  RedirectedStream out(stdout);
  RedirectedStream err(stderr);
  action();
  CapturedOutput output = {out.Finish(), err.Finish()};
  KeepPrinted("unit.stdout", output.out);
  KeepPrinted("unit.stderr", output.err);
  return output;
}

} // namespace korvex
