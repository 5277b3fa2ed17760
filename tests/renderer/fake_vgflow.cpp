// Plays the renderer's library of switches.
#include "fake.h"

extern "C" {
int VgSetImageScale(int mode) { return Say("VgSetImageScale %i", mode); }
int VgSetImagePixWorH(int width, int height) { return Say("VgSetImagePixWorH %i %i", width, height); }
int VgSetColorDepth(int depth) { return Say("VgSetColorDepth %i", depth); }
int VgSetDPI(int dpi) { return Say("VgSetDPI %i", dpi); }
int VgIgnoreImages(int ignore) { return Say("VgIgnoreImages %i", ignore); }
int VgIgnoreText(int ignore) { return Say("VgIgnoreText %i", ignore); }
int VgIgnorePaths(int ignore) { return Say("VgIgnorePaths %i", ignore); }
int VgSetFontPath(const char *folder) { return Say("VgSetFontPath %s", folder); }
int VgLoadOptionsFromString(const char *options) { return Say("VgLoadOptionsFromString %s", options); }
}
