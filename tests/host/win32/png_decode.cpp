// png_decode.cpp: PNG files back into pictures, by the imaging component of Windows.
#include "../png_decode.h"

#include <wincodec.h>
#include <windows.h>

#include <gtest/gtest.h>

static Picture readPicture(IWICBitmapSource* source)
{
    UINT width = 0, height = 0;
    EXPECT_EQ(source->GetSize(&width, &height), S_OK);
    Picture picture = { width, height, std::vector<uint8_t>(size_t(width) * height * 3) };
    EXPECT_EQ(source->CopyPixels(nullptr, width * 3, UINT(picture.rgb.size()), picture.rgb.data()), S_OK);
    for (size_t at = 0; at < picture.rgb.size(); at += 3) std::swap(picture.rgb[at], picture.rgb[at + 2]);
    return picture;
}

Picture decodePng(const std::vector<uint8_t>& png)
{
    std::vector<uint8_t> bytes = png;
    IWICImagingFactory* factory = nullptr;
    IWICStream* stream = nullptr;
    IWICBitmapDecoder* decoder = nullptr;
    IWICBitmapFrameDecode* frame = nullptr;
    IWICBitmapSource* source = nullptr;
    Picture picture = { 0, 0, {} };
    EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    const bool ready =
        CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWICImagingFactory),
                         reinterpret_cast<void**>(&factory)) == S_OK &&
        factory->CreateStream(&stream) == S_OK &&
        stream->InitializeFromMemory(bytes.data(), DWORD(bytes.size())) == S_OK &&
        factory->CreateDecoderFromStream(stream, nullptr, WICDecodeMetadataCacheOnDemand, &decoder) == S_OK &&
        decoder->GetFrame(0, &frame) == S_OK &&
        WICConvertBitmapSource(GUID_WICPixelFormat24bppBGR, frame, &source) == S_OK;
    EXPECT_TRUE(ready);
    if (ready) picture = readPicture(source);
    for (IUnknown* object :
         { static_cast<IUnknown*>(source), static_cast<IUnknown*>(frame), static_cast<IUnknown*>(decoder),
           static_cast<IUnknown*>(stream), static_cast<IUnknown*>(factory) }) {
        if (object) object->Release();
    }
    CoUninitialize();
    return picture;
}
