/* The save dialog and its controls, for the resource compiler and the code alike. */
#ifndef RASTREL_DISPLAY_WIN32_SAVE_DIALOG_IDS_H_
#define RASTREL_DISPLAY_WIN32_SAVE_DIALOG_IDS_H_

#define RASTREL_SAVE_DIALOG 100
#define RASTREL_SAVE_NAME 101
#define RASTREL_SAVE_BROWSE 102
#define RASTREL_SAVE_FORMAT 103
#define RASTREL_SAVE_SYSTEM 104

#endif
