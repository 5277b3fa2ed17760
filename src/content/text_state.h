// What a text object is at, and the runs of characters that leave it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "content/resources.h"
#include "fonts/code_page_table.h"
#include "geometry/affine.h"
#include "kapdf/kapdf.h"

namespace kapdf {

// One run of characters with one position, angle, height and width. Lives until the next pass through the text, since
// records point to it.
struct TextPiece {
  TextPayload payload{};
  double widthFactor = 1.0;
  std::u16string text;
  std::u16string face;
  ElementRecord record;  // for a run that is not the first of its call
};

// How bytes of simple fonts become characters. `Q` may bring it back without the font.
struct TextDecoding {
  int32_t codePage = -1;
  const CPDFFontObject *differences = nullptr;  // of this font, when it has any
};

struct TextState {
  bool active = false;  // between BT and ET
  Affine matrix;        // never moves on showing
  Affine line;          // where the pen stands on the line
  double pen = 0;       // what it has gone beyond that, text space
  FontUse *font = nullptr;
  TextDecoding decoding;
  CodePageTables codePages;
  std::vector<std::unique_ptr<TextPiece>> pieces;  // only grows
  size_t piece = 0;                                // the one that gathers characters; the ones before it have left
  double width = 0;                                // of those characters, text space
  ElementRecord hiddenLayer;                       // chained ahead of the first hidden text
  LayerDefPayload hiddenLayerBlock{};
  bool hiddenLayerSent = false;

  TextPiece &current() { return *pieces[piece]; }
  const CPDFFontObject *object() const { return font ? font->font.get() : nullptr; }
};

}  // namespace kapdf
