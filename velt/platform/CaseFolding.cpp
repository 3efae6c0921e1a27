#include "velt/platform/CaseFolding.hpp"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>

#include <climits>
#include <utility>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

// Most keys are plain ASCII: fold those in one pass without ICU. False, with
// folded left unfinished, at the first byte beyond ASCII.
bool foldAscii(std::string_view text, std::string& folded) {
  folded.resize(text.size());
  char* out = folded.data();
  for (size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c >= 0x80) return false;
    out[i] = static_cast<char>(static_cast<unsigned>(c - 'A') < 26u ? c + ('a' - 'A') : c);
  }
  return true;
}

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string folded;
  FoldCase(text, folded);
  return folded;
}

void FoldCase(std::string_view text, std::string& folded) {
  if (foldAscii(text, folded)) return;
  if (text.size() > static_cast<size_t>(INT32_MAX))
    throw Error(errInvalidProcedureCall,
                "FoldCase: a text of " + std::to_string(text.size()) + " bytes is too long");
  std::string result;
  result.reserve(text.size());
  icu::StringByteSink<std::string> sink(&result);
  UErrorCode status = U_ZERO_ERROR;
  icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT,
                         icu::StringPiece(text.data(), static_cast<int32_t>(text.size())), sink,
                         nullptr, status);
  if (U_FAILURE(status))
    throw Error(status == U_MEMORY_ALLOCATION_ERROR ? errOutOfMemory : errInvalidProcedureCall,
                std::string("FoldCase: ICU cannot fold the text (") + u_errorName(status) + ")");
  folded = std::move(result);
}

}  // namespace velt
