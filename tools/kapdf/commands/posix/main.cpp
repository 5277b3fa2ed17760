#include <iostream>

#include "commands/tool.h"

int main(int count, char **arguments) {
  std::ios::sync_with_stdio(false);
  const std::vector<std::string> words(arguments + 1, arguments + count);
  return kapdf::tool::RunTool(words, {std::cin, std::cout, std::cerr});
}
