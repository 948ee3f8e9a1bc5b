#include "share/ShareViewController.h"

#include "share/RequestEnd.h"

namespace sela {

void ShareViewController::didSelectPost() {
    completeRequest(*this);
}

} // namespace sela
