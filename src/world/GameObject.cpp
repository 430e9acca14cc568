#include "world/GameObject.h"

CGameObject::CGameObject()
    : masterItem(new CLinkedItem(this)), bandItem(new CLinkedItem(this)), bandItem2(new CLinkedItem(this))
{
}

CGameObject::~CGameObject()
{
    delete masterItem;
    delete bandItem;
    delete bandItem2;
}
