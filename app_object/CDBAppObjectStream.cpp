// The configuration data block as a text of hexadecimal digits, in both byte orders: the
// header, the zero fill, and the members writing themselves in at their positions.
#include <new>
#include <string>
#include <utility>

#include "app_object/CDBAppObject.h"
#include "app_object/CompiledBlockType.h"
#include "app_object/ImageSkeleton.h"
#include "base/MMain.h"
#include "platform/Messages.h"

namespace zerbin {
namespace {

// The object ID as the image holds it: an ID beyond 32 bits throws OverflowError, which
// goes to the caller of the image.
std::string ObjectIdDigits(const std::string& id) {
    int32_t objectId = ToInt32(LeadingNumber(id));
    return HexWord(objectId);
}

}  // namespace

std::string CDBAppObject::ImageHeader(bool intelOrder) {
    // The field itself goes through HexByte: a block longer than 255 bytes reads 255 from
    // the first image on, which is what the image's length byte can say.
    std::string image = HexByte(cdbDimension_);
    std::string ownDigits;
    const std::string* objectId = &ownDigits;
    if (compiled_ && compiled_->imageId.known && compiled_->imageId.id == header_->id) {
        objectId = &compiled_->imageId.digits;
    } else {
        ownDigits = ObjectIdDigits(header_->id);
        if (compiled_) {
            CompiledBlockType::ImageId& known = compiled_->imageId;
            known.known = false;
            known.id = header_->id;
            known.digits = ownDigits;
            known.known = true;
        }
    }
    if (intelOrder) {
        image.append(*objectId, 2, 2).append(*objectId, 0, 2);
    } else {
        image += *objectId;
    }
    return image;
}

std::string CDBAppObject::ImageBody(std::string image, bool intelOrder) {
    if (const ImageSkeleton* skeleton = compiled_ ? compiled_->Skeleton(intelOrder) : nullptr;
        skeleton && skeleton->Write(image, cdbDimension_, inputs_.get(), attributes_.get(),
                                    compiled_->inputs.get(), compiled_->attributes.get())) {
        return image;
    }
    return ImageSkeleton::WriteMembers(std::move(image), cdbDimension_, inputs_.get(),
                                       attributes_.get(), intelOrder);
}

std::string CDBAppObject::IAppObject_Stream() {
    std::string image = ImageHeader(false);
    try {
        image = ImageBody(std::move(image), false);
    } catch (const std::bad_alloc&) {
        throw;  // not the length of the object: the user hears of it as it is
    } catch (...) {
        ShowMessage("Error exporting the object: " + header_->name +
                    ",   A possible error is the lenght of the object.");
        return {};
    }
    lastStream_ = std::move(image);
    return lastStream_;
}

std::string CDBAppObject::IAppObject_IntelStream() {
    std::string image = ImageHeader(true);
    try {
        return ImageBody(std::move(image), true);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return {};
    }
}

}  // namespace zerbin
