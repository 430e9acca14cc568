#include "platform/Font.h"

bool CFont::CreateFontIndirect(const LOGFONT& request)
{
    DeleteObject();
    logFont = request;
    created = true;
    return true;
}

void CFont::DeleteObject()
{
    created = false;
}
