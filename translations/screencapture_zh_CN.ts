<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>DesktopSource</name>
    <message>
        <source>The screens cannot be grabbed.</source>
        <translation>无法抓取屏幕。</translation>
    </message>
    <message>
        <source>The picture is not that of the whole desktop.</source>
        <translation>图片不是整个桌面的图片。</translation>
    </message>
</context>
<context>
    <name>PenWidthWidget</name>
    <message>
        <source>Pen width</source>
        <translation>画笔粗细</translation>
    </message>
</context>
<context>
    <name>PortalScreenshot</name>
    <message>
        <source>There is no session bus.</source>
        <translation>没有会话总线。</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal takes no screenshots: %1</source>
        <translation>桌面门户不提供屏幕截图:%1</translation>
    </message>
    <message>
        <source>The screenshot was not permitted.</source>
        <translation>屏幕截图未获允许。</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal could not take the screenshot.</source>
        <translation>桌面门户未能完成屏幕截图。</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal gave no picture.</source>
        <translation>桌面门户没有给出图片。</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal has gone away.</source>
        <translation>桌面门户已退出。</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Courier New</source>
        <translation>Courier New</translation>
    </message>
</context>
<context>
    <name>ScreenCaptureWnd</name>
    <message>
        <source>PNG (*.png)</source>
        <translation>PNG (*.png)</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>PNG (*.png);;JPEG (*.jpg;*.jpeg);;BMP (*.bmp)</source>
        <translation>PNG (*.png);;JPEG (*.jpg;*.jpeg);;BMP (*.bmp)</translation>
    </message>
    <message>
        <source>scribble</source>
        <translation>画笔</translation>
    </message>
    <message>
        <source>text</source>
        <translation>文字</translation>
    </message>
    <message>
        <source>Arrow</source>
        <translation>箭头</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>矩形</translation>
    </message>
    <message>
        <source>Ellipse</source>
        <translation>椭圆</translation>
    </message>
    <message>
        <source>Mosaic</source>
        <translation>马赛克</translation>
    </message>
    <message>
        <source>undo</source>
        <translation>撤销</translation>
    </message>
    <message>
        <source>redo</source>
        <translation>重做</translation>
    </message>
    <message>
        <source>save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>颜色</translation>
    </message>
    <message>
        <source>Font size</source>
        <translation>字号</translation>
    </message>
    <message>
        <source>Blur</source>
        <translation>模糊度</translation>
    </message>
    <message>
        <source>There is no picture.</source>
        <translation>没有图片。</translation>
    </message>
    <message>
        <source>The screens have changed.</source>
        <translation>屏幕已改变。</translation>
    </message>
</context>
</TS>
