<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>FloatPlaneFps</name>
    <message>
        <source>Frame rate</source>
        <translation>帧率</translation>
    </message>
</context>
<context>
    <name>FloatPlanePlaySpeed</name>
    <message>
        <source>Play speed</source>
        <translation>播放速度</translation>
    </message>
</context>
<context>
    <name>FloatPlaneRecordTime</name>
    <message>
        <source>Record delay</source>
        <translation>录制延时</translation>
    </message>
    <message>
        <source>No delay</source>
        <translation>无延时</translation>
    </message>
    <message>
        <source>-%1s</source>
        <translation>-%1秒</translation>
    </message>
</context>
<context>
    <name>KelPlayCtrlWidget</name>
    <message>
        <source>Play time</source>
        <translation>播放时间</translation>
    </message>
    <message>
        <source>Play time and length of the recording</source>
        <translation>播放时间与录制总长</translation>
    </message>
</context>
<context>
    <name>KelPlayTimeLable</name>
    <message>
        <source>Play time</source>
        <translation>播放时间</translation>
    </message>
    <message>
        <source>Play time and length of the recording</source>
        <translation>播放时间与录制总长</translation>
    </message>
</context>
<context>
    <name>KelPlaybackExportDialog</name>
    <message>
        <source>Export Progress</source>
        <translation>导出进度</translation>
    </message>
    <message>
        <source>Progress of the export</source>
        <translation>导出的进度</translation>
    </message>
    <message>
        <source>Go on exporting with the window out of the way</source>
        <translation>最小化窗口，继续导出</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>最小化</translation>
    </message>
    <message>
        <source>End the export and keep no file</source>
        <translation>停止导出，不保留文件</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>After the next recording, do not ask here</source>
        <translation>下次录制导出后不再询问</translation>
    </message>
    <message>
        <source>Auto-exit recording after encoding</source>
        <translation>编码完成后自动退出录制</translation>
    </message>
    <message>
        <source>Close this and leave the recording mode</source>
        <translation>关闭此窗口并退出录制模式</translation>
    </message>
    <message>
        <source>Exit Record</source>
        <translation>退出录制</translation>
    </message>
    <message>
        <source>Close this</source>
        <translation>关闭此窗口</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Exporting...</source>
        <translation>正在导出...</translation>
    </message>
    <message>
        <source>Encoding completed.</source>
        <translation>编码完成。</translation>
    </message>
    <message>
        <source>Export Error</source>
        <translation>导出错误</translation>
    </message>
    <message>
        <source>Failed to mix audio and video tracks</source>
        <translation>音频与视频混合失败</translation>
    </message>
    <message>
        <source>Failed to generate video track</source>
        <translation>生成视频轨道失败</translation>
    </message>
    <message>
        <source>Export Complete</source>
        <translation>导出完成</translation>
    </message>
</context>
<context>
    <name>KelRecordButton</name>
    <message>
        <source>Start recording</source>
        <translation>开始录制</translation>
    </message>
    <message>
        <source>Stop recording</source>
        <translation>停止录制</translation>
    </message>
</context>
<context>
    <name>KelRecordFpsLabel</name>
    <message>
        <source>Frame rate</source>
        <translation>帧率</translation>
    </message>
    <message>
        <source>Frames recorded per second</source>
        <translation>每秒录制的帧数</translation>
    </message>
</context>
<context>
    <name>KelRecordPauseButton</name>
    <message>
        <source>Pause recording</source>
        <translation>暂停录制</translation>
    </message>
    <message>
        <source>Resume recording</source>
        <translation>继续录制</translation>
    </message>
</context>
<context>
    <name>KelRecordTimeLable</name>
    <message>
        <source>Recorded time</source>
        <translation>已录制时间</translation>
    </message>
    <message>
        <source>Recorded time. Click to set a delay before recording starts</source>
        <translation>已录制时间。点击可设置录制开始前的延时</translation>
    </message>
</context>
<context>
    <name>PlayPauseButton</name>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
</context>
<context>
    <name>PlayProgressBar</name>
    <message>
        <source>Play position</source>
        <translation>播放位置</translation>
    </message>
    <message>
        <source>Drag to seek, drag the ends to trim. Keys: arrows seek, I and O cut here</source>
        <translation>拖动以定位，拖动两端以裁剪。按键：方向键定位，I 和 O 在此处裁剪</translation>
    </message>
    <message>
        <source>Drag to seek, or use the arrow keys</source>
        <translation>拖动以定位，或使用方向键</translation>
    </message>
</context>
<context>
    <name>PlaySpeedLabel</name>
    <message>
        <source>Play speed</source>
        <translation>播放速度</translation>
    </message>
</context>
</TS>
