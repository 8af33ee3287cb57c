// Numbers of what stands in the module's resource file, for C++ sources and for the resource compiler.
#pragma once

#define CVX_SCRIPT_MEDIA_OBJECT 101
#define CVX_SCRIPT_PROPERTY_PAGE 107

#define CVX_STRING_PRODUCT 100
#define CVX_STRING_PLUGIN_NAME 102
#define CVX_STRING_PLUGIN_DESCRIPTION 103
#define CVX_STRING_PAGE_DOCUMENT 104
#define CVX_STRING_PAGE_HELP_FILE 105
#define CVX_STRING_PAGE_TITLE 106
#define CVX_STRING_SCALE_FACTOR_RANGE 109

#define CVX_DIALOG_PAGE 108

#define CVX_ICON 203
