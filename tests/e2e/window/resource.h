#pragma once

// Ids of the driver's test window.
#define IDR_KEYS 1
#define IDD_VALUE 2
#define IDC_VALUE 100
#define ID_QUESTION 200
#define ID_BOX_INFORMATION 201
#define ID_BOX_WARNING 202
#define ID_BOX_ERROR 203
#define ID_BOX_PLAIN 204
#define ID_FILE_NAME 205
#define ID_FOLDER 206
#define ID_VALUE 207
#define ID_KEY 208
