// A slide and its shapes, read from the office one call at a time.
#pragma once

#include <com/sun/star/drawing/XShape.hpp>

#include "adapters/impress/OfficeModel.h"

namespace kestrum::impress {

class ImpressSlide : public host::ISlide {
  public:
    ImpressSlide(std::shared_ptr<OfficeModel> office, std::shared_ptr<OfficeDocument> document, std::int32_t number)
        : m_office(std::move(office)), m_document(std::move(document)), m_number(number) {}
    std::int32_t SlideIndex() override { return m_number; }
    std::unique_ptr<host::IShapes> Shapes() override;
    float MasterHeight() override;

  private:
    std::shared_ptr<OfficeModel> m_office;
    std::shared_ptr<OfficeDocument> m_document;
    std::int32_t m_number;
};

class ImpressShapes : public host::IShapes {
  public:
    ImpressShapes(std::shared_ptr<OfficeModel> office, css::uno::Reference<css::drawing::XDrawPage> page)
        : m_office(std::move(office)), m_page(std::move(page)) {}
    bool HasTitle() override;
    std::unique_ptr<host::IShape> Title() override;
    std::int32_t Count() override;
    std::unique_ptr<host::IShape> Item(std::int32_t index) override;

  private:
    css::uno::Reference<css::drawing::XShape> FindTitle();

    std::shared_ptr<OfficeModel> m_office;
    css::uno::Reference<css::drawing::XDrawPage> m_page;
};

class ImpressShape : public host::IShape {
  public:
    ImpressShape(std::shared_ptr<OfficeModel> office, css::uno::Reference<css::drawing::XShape> shape)
        : m_office(std::move(office)), m_shape(std::move(shape)) {}
    bool HasTextFrame() override;
    bool HasText() override;
    String Text() override;
    float TextTop() override;
    float TextFontSize() override;

  private:
    std::shared_ptr<OfficeModel> m_office;
    css::uno::Reference<css::drawing::XShape> m_shape;
};

/// Points of 1/100 mm, snapped to 1/8 point: the office rounds 405 points to 404.99.
float SnappedPoints(std::int32_t hundredthMm);

}  // namespace kestrum::impress
