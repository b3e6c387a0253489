#include "bench/Peers.h"

#include <emf2svg.h>
#include <libwmf/api.h>
#include <libwmf/svg.h>

#include <cstdlib>
#include <cstring>

namespace peers {

Result Emf2svg(const char* data, size_t size) {
    char noNamespace[] = "";
    generatorOptions options;
    std::memset(&options, 0, sizeof options);
    options.nameSpace = noNamespace;
    options.verbose = false;
    options.emfplus = false;
    options.svgDelimiter = true;
    options.imgWidth = 0;
    options.imgHeight = 0;
    char* svg = nullptr;
    size_t length = 0;
    const int ok = emf2svg(const_cast<char*>(data), size, &svg, &length, &options);
    const bool converted = ok != 0 && svg != nullptr;
    std::free(svg);
    return {converted, length};
}

Result Libwmf(const char* data, size_t size) {
    wmfAPI_Options options;
    std::memset(&options, 0, sizeof options);
    options.function = wmf_svg_function;
    const unsigned long flags =
        WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL | WMF_OPT_NO_ERROR | WMF_OPT_NO_DEBUG;
    wmfAPI* api = nullptr;
    if (wmf_api_create(&api, flags, &options) != wmf_E_None) {
        if (api) wmf_api_destroy(api);
        return {false, 0};
    }
    Result result{false, 0};
    wmfD_Rect bbox;
    wmf_error_t err = wmf_mem_open(api, (unsigned char*)data, (long)size);
    if (err == wmf_E_None) err = wmf_scan(api, 0, &bbox);
    if (err == wmf_E_None) {
        wmf_svg_t* device = WMF_SVG_GetData(api);
        unsigned int width = 0, height = 0;
        wmf_display_size(api, &width, &height, 72, 72);
        device->out = wmf_stream_create(api, nullptr);
        device->bbox = bbox;
        device->width = width;
        device->height = height;
        device->flags |= WMF_SVG_INLINE_IMAGES;
        err = wmf_play(api, 0, &bbox);
        char* svg = nullptr;
        unsigned long length = 0;
        wmf_stream_destroy(api, device->out, &svg, &length);
        device->out = nullptr;
        if (svg) wmf_free(api, svg);
        result = {err == wmf_E_None, (size_t)length};
    }
    wmf_mem_close(api);
    wmf_api_destroy(api);
    return result;
}

}  // namespace peers
