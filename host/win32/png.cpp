// png.cpp: a picture as the bytes of a PNG file, by the imaging component of Windows.
#include "../png.h"

#include <wincodec.h>
#include <windows.h>

// What is made on the way; whatever was made is given back at the end.
struct Encoding {
    IWICImagingFactory* factory = nullptr;
    IStream* stream = nullptr;
    IWICBitmapEncoder* encoder = nullptr;
    IWICBitmapFrameEncode* frame = nullptr;
};

static void release(IUnknown* object)
{
    if (object) object->Release();
}

static std::vector<uint8_t> blueFirst(std::vector<uint8_t> rgb)
{
    for (size_t at = 0; at + 2 < rgb.size(); at += 3) std::swap(rgb[at], rgb[at + 2]);
    return rgb;
}

static HRESULT begin(Encoding* encoding)
{
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      __uuidof(IWICImagingFactory), reinterpret_cast<void**>(&encoding->factory));
    if (SUCCEEDED(result)) result = CreateStreamOnHGlobal(nullptr, TRUE, &encoding->stream);
    if (SUCCEEDED(result))
        result = encoding->factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoding->encoder);
    if (SUCCEEDED(result)) result = encoding->encoder->Initialize(encoding->stream, WICBitmapEncoderNoCache);
    if (SUCCEEDED(result)) result = encoding->encoder->CreateNewFrame(&encoding->frame, nullptr);
    if (SUCCEEDED(result)) result = encoding->frame->Initialize(nullptr);
    return result;
}

static HRESULT encode(const Encoding& encoding, const Picture& picture)
{
    std::vector<uint8_t> pixels = blueFirst(picture.rgb);
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    const UINT width = UINT(picture.width), height = UINT(picture.height), stride = 3 * width;
    HRESULT result = encoding.frame->SetSize(width, height);
    if (SUCCEEDED(result)) result = encoding.frame->SetPixelFormat(&format);
    if (SUCCEEDED(result) && !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR)) result = E_FAIL;
    if (SUCCEEDED(result)) result = encoding.frame->WritePixels(height, stride, UINT(pixels.size()), pixels.data());
    if (SUCCEEDED(result)) result = encoding.frame->Commit();
    if (SUCCEEDED(result)) result = encoding.encoder->Commit();
    return result;
}

static std::vector<uint8_t> contentOf(IStream* stream)
{
    STATSTG status = {};
    const LARGE_INTEGER start = {};
    if (FAILED(stream->Stat(&status, STATFLAG_NONAME)) || FAILED(stream->Seek(start, STREAM_SEEK_SET, nullptr)))
        return {};
    std::vector<uint8_t> bytes(size_t(status.cbSize.QuadPart));
    ULONG read = 0;
    if (FAILED(stream->Read(bytes.data(), ULONG(bytes.size()), &read)) || read != bytes.size()) return {};
    return bytes;
}

std::vector<uint8_t> encodePng(const Picture& picture)
{
    const HRESULT library = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    Encoding encoding;
    HRESULT result = begin(&encoding);
    if (SUCCEEDED(result)) result = encode(encoding, picture);
    std::vector<uint8_t> png;
    if (SUCCEEDED(result)) png = contentOf(encoding.stream);
    release(encoding.frame);
    release(encoding.encoder);
    release(encoding.stream);
    release(encoding.factory);
    if (SUCCEEDED(library)) CoUninitialize();
    return png;
}
