#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <iostream>

#include "commands/tool.h"
#include "system/utf.h"

int wmain(int count, wchar_t **arguments) {
  SetConsoleOutputCP(CP_UTF8);
  // JSON Lines and SVG are the same bytes on every system.
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  std::ios::sync_with_stdio(false);
  std::vector<std::string> words;
  for (int i = 1; i < count; ++i) {
    words.push_back(kapdf::tool::ToUtf8(reinterpret_cast<const char16_t *>(arguments[i])));
  }
  return kapdf::tool::RunTool(words, {std::cin, std::cout, std::cerr});
}
