#include "plugins/image/CImageReader.h"

#include "plugins/image/Connection.h"
#include "plugins/image/DeviceImage.h"
#include "plugins/image/ImageStores.h"
#include "plugins/image/SystemCheck.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace VemoKesConfigTools {

namespace {

/// Sorts places that have an order first: 0, for none, becomes the largest number.
std::uint32_t RankOf(const EncodedPlace& place) { return place.place.order - std::uint32_t{1}; }

}  // namespace

CImageReader::PlaceFilter CImageReader::FilterOf(const CKesContext& /*context*/) const {
    return [](const BinaryPlace& /*place*/) { return true; };
}

std::vector<EncodedPlace> CImageReader::Collect(CKesContext& context, std::string& subject) {
    subject = mConnection;
    const PlaceFilter takes = FilterOf(context);
    const DeviceImage image(PathOfConnection(mConnection), files::LockMode::SHARED, mFamily);
    ExpectChip(image.Header(), Provider(), context);
    ExpectSystem(image.Directory(), context);

    std::vector<std::vector<EncodedPlace>> byStore = PlacesByStore(image);
    for (std::vector<EncodedPlace>& some : byStore)
        std::erase_if(some, [&](const EncodedPlace& place) { return !takes(place.place); });
    for (const CStoreInfo& store : StoreInfosOf(image, byStore)) AddStore(store);

    std::vector<EncodedPlace> places;
    for (std::vector<EncodedPlace>& some : byStore)
        places.insert(places.end(), std::make_move_iterator(some.begin()),
                      std::make_move_iterator(some.end()));
    std::ranges::stable_sort(places, {}, RankOf);
    return places;
}

}  // namespace VemoKesConfigTools
