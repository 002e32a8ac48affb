// Resource identifiers of the control module.
#pragma once

#define IDR_TYPELIB 1
#define IDD_ABOUTBOX 201
#define IDB_TOOLBOX 202
