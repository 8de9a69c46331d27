#pragma once

// Numbers of the resources, read by the resource compiler as well.

#define IDR_VIEWER 1

#define IDM_OPEN 101
#define IDM_SAVE 102
#define IDM_INFORMATION 103
#define IDM_EXIT 104
#define IDM_COPY 111
#define IDM_PASTE 112
#define IDM_CAPTURE 113
#define IDM_FIT 121
#define IDM_ACTUAL_SIZE 122
#define IDM_ZOOM_IN 123
#define IDM_ZOOM_OUT 124
#define IDM_LEFT 131
#define IDM_RIGHT 132
#define IDM_UP 133
#define IDM_DOWN 134
#define IDM_PAGE_LEFT 135
#define IDM_PAGE_RIGHT 136
#define IDM_PAGE_UP 137
#define IDM_PAGE_DOWN 138
#define IDM_ABOUT 141

#define IDD_CAPTURE 201
#define IDC_WINDOWS 202
