<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>CommandLine</name>
    <message>
        <source>Take one capture at once and exit: 0 with a picture, 1 when cancelled, 2 for an error.</source>
        <translation>立即截图一次并退出:0 表示已得到图片,1 表示已取消,2 表示出错。</translation>
    </message>
    <message>
        <source>With --once: write the picture to FILE (.png, .jpg, .jpeg or .bmp).</source>
        <translation>与 --once 一起使用:将图片写入 FILE(.png、.jpg、.jpeg 或 .bmp)。</translation>
    </message>
    <message>
        <source>With --once: put the picture on the clipboard and stay until another program takes the clipboard over.</source>
        <translation>与 --once 一起使用:将图片放入剪贴板,并等到其他程序接管剪贴板为止。</translation>
    </message>
    <message>
        <source>Wait that long before the capture.</source>
        <translation>截图前等待的时间。</translation>
    </message>
    <message>
        <source>Keep the settings in DIR, which is created if missing.</source>
        <translation>将设置保存在 DIR 中,该目录不存在时会创建。</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>显示此帮助。</translation>
    </message>
    <message>
        <source>Show the version.</source>
        <translation>显示版本。</translation>
    </message>
    <message>
        <source>Takes a screenshot of a region of the desktop. Without --once, opens a window.</source>
        <translation>截取桌面的一个区域。不带 --once 时打开一个窗口。</translation>
    </message>
    <message>
        <source>unexpected argument &apos;%1&apos;</source>
        <translation>意外的参数“%1”</translation>
    </message>
    <message>
        <source>--output and --clipboard need --once</source>
        <translation>--output 和 --clipboard 需要与 --once 一起使用</translation>
    </message>
    <message>
        <source>--output &apos;%1&apos;: the name must end with .png, .jpg, .jpeg or .bmp</source>
        <translation>--output “%1”:文件名必须以 .png、.jpg、.jpeg 或 .bmp 结尾</translation>
    </message>
    <message>
        <source>--settings needs a directory</source>
        <translation>--settings 需要一个目录</translation>
    </message>
    <message>
        <source>--delay &apos;%1&apos;: not a number of seconds</source>
        <translation>--delay “%1”:不是秒数</translation>
    </message>
    <message>
        <source>there is no display to take a capture of</source>
        <translation>没有可以截图的显示器</translation>
    </message>
    <message>
        <source>cannot create the settings directory &apos;%1&apos;</source>
        <translation>无法创建设置目录“%1”</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Screenshot</source>
        <translation>截图</translation>
    </message>
    <message>
        <source>New screenshot</source>
        <translation>新建截图</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>复制</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>No screenshot yet</source>
        <translation>还没有截图</translation>
    </message>
    <message>
        <source>%1 x %2 pixels</source>
        <translation>%1 x %2 像素</translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.jpeg *.bmp)</source>
        <translation>图片 (*.png *.jpg *.jpeg *.bmp)</translation>
    </message>
    <message>
        <source>Cannot write &apos;%1&apos;.</source>
        <translation>无法写入“%1”。</translation>
    </message>
</context>
<context>
    <name>OneCapture</name>
    <message>
        <source>not a regular file</source>
        <translation>不是普通文件</translation>
    </message>
    <message>
        <source>capture-host: cannot write &apos;%1&apos;: %2</source>
        <translation>capture-host: 无法写入“%1”:%2</translation>
    </message>
</context>
</TS>
