/* Numbers of the dialogs and of their controls, for the resources, too: nothing but macros stands here. The texts of a
 * choice stand under its control's number, with bars between them. */
#pragma once

#define FORM_IMPORT 100
#define FORM_EXPORT 101

#define FORM_WRONG_NUMBER 2001 /* text: %1 and %2 stand for the bounds */

#define FORM_AS_IMAGE 3001
#define FORM_DPI 3002
#define FORM_COLOR_DEPTH 3003
#define FORM_DITHER 3005
#define FORM_EXTRACT_TEXT 3006
#define FORM_CONVERT_POLY 3007
#define FORM_FIT_TOLERANCE 3008
#define FORM_CLIPPING 3009
#define FORM_EPSG_CODE 3010
#define FORM_DEFAULT_RESOLUTION 3011
#define FORM_IMAGE_FRAME 3012
#define FORM_COMBINE_STRIPES 3013
#define FORM_JBIG2 3014
#define FORM_EMBEDDED_FONTS 3015
#define FORM_UNICODE_MAP 3016
#define FORM_CODE_PAGE 3017
#define FORM_TEXT_WIDTH 3018
#define FORM_LOG 3019
#define FORM_WRITE_TO_TXT 3020
#define FORM_EXTENDED 3021

#define FORM_COLOR_COMPRESSION 3101
#define FORM_BW_COMPRESSION 3102
#define FORM_QUALITY 3103
#define FORM_AT_ORIGIN 3104
#define FORM_PAPER_FRAME 3105
#define FORM_PDFA 3106
#define FORM_GEOTIFF 3107
#define FORM_JOIN_STYLE 3108
#define FORM_MITER 3109
#define FORM_LINE_CAP 3110
#define FORM_EMBED_FONTS 3111
#define FORM_AUTHOR 3112
#define FORM_SUBJECT 3113
#define FORM_KEYWORDS 3114
#define FORM_COPYRIGHT 3115
#define FORM_WRITE_RETRIES 3116
