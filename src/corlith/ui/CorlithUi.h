// Everything the user-interface library offers, for hosts that include one header.
#pragma once

#include <corlith/ui/CheckDataExport.h>
#include <corlith/ui/CheckDataInputDlg.h>
#include <corlith/ui/ClipBoard.h>
#include <corlith/ui/Dialog.h>
#include <corlith/ui/DialogTemplate.h>
#include <corlith/ui/ExportDialogs.h>
#include <corlith/ui/GDIBitmap.h>
#include <corlith/ui/GLProbe.h>
#include <corlith/ui/GifControl.h>
#include <corlith/ui/Image.h>
#include <corlith/ui/LGrid.h>
#include <corlith/ui/LListBox.h>
#include <corlith/ui/OrvaneDialogs.h>
#include <corlith/ui/ProgressBar.h>
#include <corlith/ui/ResizableScrollDialog.h>
#include <corlith/ui/UiStart.h>
#include <corlith/ui/Window.h>
#include <corlith/ui/WindowCapture.h>
#include <corlith/ui/WxMenu.h>
#include <corlith/ui/grid/GridCtrl.h>
