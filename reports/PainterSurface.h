#pragma once
// The print surface that lays a report out into pages and paints them with QPainter: on the
// preview, into a PDF file (fonts embedded, text kept as text, white paper) or on a printer.
// Lengths are twips; fonts are measured at 20 units to the point, so the layout is the same on
// every device.

#include "reports/PrintSurface.h"

#include <QPagedPaintDevice>

#include <filesystem>
#include <memory>
#include <string>

class QPainter;

namespace reports {

class PainterSurface : public PrintSurface
{
public:
    PainterSurface();
    ~PainterSurface() override;
    PainterSurface(const PainterSurface&) = delete;
    PainterSurface& operator=(const PainterSurface&) = delete;

    void StartDoc() override;
    void EndDoc() override;
    void NewPage() override;
    void SetOrientation(Orientation orientation) override;
    void SetPaper(Paper paper) override;
    void SetMargins(const Margins& margins) override;
    void SetHeader(std::string_view text) override;
    void SetFooter(std::string_view text) override;
    void SetHeaderFont(std::string_view name, double size) override;
    void SetFont(const FontSpec& font) override;
    void SetLineSpacing(int percent) override;
    void Paragraph(std::string_view text) override;
    void RichText(std::string_view html) override;
    void Table(std::string_view format, std::string_view header, const TableRows& body,
               Rgb headerColour = kHeaderColour, Rgb bodyColour = kBodyColour) override;
    void SetPenWidth(int twips) override;
    void Circle(int x, int y, int radius) override;
    void DrawPicture(const QImage& image, int left, int top, int right, int bottom) override;
    void Pictures(const std::vector<QImage>& images, int width, int height, int gap) override;
    bool DocumentOpen() const override;
    int PageCount() const override;
    int PageWidth() const override;
    int PageHeight() const override;

    // True from EndDoc until the next StartDoc: the document is complete.
    bool Finished() const;
    Orientation PageOrientation() const;
    Paper PaperSize() const;

    // The text runs of a page (from 1) in the order they were laid out, header and footer last:
    // what a reader of the page would find, for tests.
    std::vector<std::string> PageTexts(int page) const;

    // Paints page `page` (from 1) on a white sheet; the painter's units must be twips of the
    // paper (the caller scales it). Nothing for a page that does not exist.
    void PaintPage(int page, QPainter& painter) const;
    // The page as a picture, `dpi` dots to the inch (the preview).
    QImage PageImage(int page, double dpi) const;

    // Paints pages from..to (from 1, clamped to the document) on a paged device (a QPrinter
    // or QPdfWriter) whose page layout the caller has set from PaperSize and PageOrientation.
    // Returns false when the device could not be painted on.
    bool PaintTo(QPagedPaintDevice& device, int from, int to) const;

    // Writes the whole document as a PDF file: to a temporary name in the same folder, renamed
    // to path when complete, so that no half-written file is ever left under path.
    // Returns false with error set to a message naming the file when it could not be written.
    bool WritePdf(const std::filesystem::path& path, std::string& error) const;

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
};

} // namespace reports
