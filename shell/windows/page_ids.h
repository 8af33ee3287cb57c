// Numbers of the property page's controls, for C++ sources and for the resource compiler.
#pragma once

#define CVX_PAGE_SCALE_FACTOR 201
#define CVX_PAGE_BYPASS_HD 203
#define CVX_PAGE_LIGHTING 204
#define CVX_PAGE_MODE_SLIDER 205
#define CVX_PAGE_STATE_GROUP 206
#define CVX_PAGE_EDGE_SLIDER 1001
