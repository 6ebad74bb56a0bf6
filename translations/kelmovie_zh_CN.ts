<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>AudioSettingsPanel</name>
    <message>
        <source>System audio</source>
        <translation>系统声音</translation>
    </message>
    <message>
        <source>System audio level</source>
        <translation>系统声音电平</translation>
    </message>
    <message>
        <source>No playback device found.</source>
        <translation>未找到播放设备。</translation>
    </message>
    <message>
        <source>No sound is playing.</source>
        <translation>当前没有播放任何声音。</translation>
    </message>
    <message>
        <source>This recording has no system audio.</source>
        <translation>此录制没有系统声音。</translation>
    </message>
    <message>
        <source>&amp;Enable</source>
        <translation>启用(&amp;E)</translation>
    </message>
    <message>
        <source>Include system audio in playback and exports</source>
        <translation>播放和导出时包含系统声音</translation>
    </message>
    <message>
        <source>&amp;Mute</source>
        <translation>静音(&amp;M)</translation>
    </message>
    <message>
        <source>Mute system audio</source>
        <translation>将系统声音静音</translation>
    </message>
    <message>
        <source>&amp;Volume</source>
        <translation>音量(&amp;V)</translation>
    </message>
    <message>
        <source>System audio volume</source>
        <translation>系统声音的音量</translation>
    </message>
    <message>
        <source>&amp;Gain</source>
        <translation>增益(&amp;G)</translation>
    </message>
    <message>
        <source>Boost system audio that was recorded too quietly</source>
        <translation>放大录得过轻的系统声音</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>麦克风</translation>
    </message>
    <message>
        <source>Microphone level</source>
        <translation>麦克风电平</translation>
    </message>
    <message>
        <source>No microphone found.</source>
        <translation>未找到麦克风。</translation>
    </message>
    <message>
        <source>The microphone is silent.</source>
        <translation>麦克风没有声音。</translation>
    </message>
    <message>
        <source>This recording has no microphone audio.</source>
        <translation>此录制没有麦克风声音。</translation>
    </message>
    <message>
        <source>E&amp;nable</source>
        <translation>启用(&amp;N)</translation>
    </message>
    <message>
        <source>Include the microphone in playback and exports</source>
        <translation>播放和导出时包含麦克风声音</translation>
    </message>
    <message>
        <source>M&amp;ute</source>
        <translation>静音(&amp;U)</translation>
    </message>
    <message>
        <source>Mute the microphone</source>
        <translation>将麦克风静音</translation>
    </message>
    <message>
        <source>V&amp;olume</source>
        <translation>音量(&amp;O)</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>麦克风的音量</translation>
    </message>
    <message>
        <source>Ga&amp;in</source>
        <translation>增益(&amp;I)</translation>
    </message>
    <message>
        <source>Boost a microphone that was recorded too quietly</source>
        <translation>放大录得过轻的麦克风声音</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Record &amp;system audio</source>
        <translation>录制系统声音(&amp;S)</translation>
    </message>
    <message>
        <source>Record system audio next time</source>
        <translation>下次录制时录下系统声音</translation>
    </message>
    <message>
        <source>&amp;Record microphone</source>
        <translation>录制麦克风(&amp;R)</translation>
    </message>
    <message>
        <source>Record the microphone next time</source>
        <translation>下次录制时录下麦克风的声音</translation>
    </message>
    <message>
        <source>Changes apply to the next recording.</source>
        <translation>更改从下次录制起生效。</translation>
    </message>
    <message>
        <source>&amp;Don't show again</source>
        <translation>不再显示(&amp;D)</translation>
    </message>
    <message>
        <source>Don't show this note again</source>
        <translation>不再显示此提示</translation>
    </message>
</context>
<context>
    <name>CursorSettingsPanel</name>
    <message>
        <source>Pointer</source>
        <translation>指针</translation>
    </message>
    <message>
        <source>&amp;Show pointer</source>
        <translation>显示指针(&amp;S)</translation>
    </message>
    <message>
        <source>Show the recorded pointer and its effects</source>
        <translation>显示录下的指针及其效果</translation>
    </message>
    <message>
        <source>&amp;Buttons</source>
        <translation>按键(&amp;B)</translation>
    </message>
    <message>
        <source>Mouse buttons whose clicks are shown</source>
        <translation>要显示其点击的鼠标按键</translation>
    </message>
    <message>
        <source>Left click</source>
        <translation>左键</translation>
    </message>
    <message>
        <source>Show left clicks</source>
        <translation>显示左键点击</translation>
    </message>
    <message>
        <source>Right click</source>
        <translation>右键</translation>
    </message>
    <message>
        <source>Show right clicks</source>
        <translation>显示右键点击</translation>
    </message>
    <message>
        <source>Middle click</source>
        <translation>中键</translation>
    </message>
    <message>
        <source>Show middle clicks</source>
        <translation>显示中键点击</translation>
    </message>
    <message>
        <source>Click &amp;effect</source>
        <translation>点击效果(&amp;E)</translation>
    </message>
    <message>
        <source>Animation shown at each click</source>
        <translation>每次点击时显示的动画</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Rays</source>
        <translation>光芒</translation>
    </message>
    <message>
        <source>Flower</source>
        <translation>花朵</translation>
    </message>
    <message>
        <source>Fireworks</source>
        <translation>烟花</translation>
    </message>
    <message>
        <source>Stars</source>
        <translation>星星</translation>
    </message>
    <message>
        <source>Ripple</source>
        <translation>波纹</translation>
    </message>
    <message>
        <source>Press</source>
        <translation>按压</translation>
    </message>
    <message>
        <source>&amp;One effect at a time</source>
        <translation>每次仅一个效果(&amp;O)</translation>
    </message>
    <message>
        <source>End the previous effect at the next click</source>
        <translation>新的点击会结束上一次点击的效果</translation>
    </message>
    <message>
        <source>Show &amp;wheel</source>
        <translation>显示滚轮(&amp;W)</translation>
    </message>
    <message>
        <source>Show wheel scrolling</source>
        <translation>显示滚轮滚动</translation>
    </message>
    <message>
        <source>&amp;Color</source>
        <translation>颜色(&amp;C)</translation>
    </message>
    <message>
        <source>Effect color</source>
        <translation>效果的颜色</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>大小(&amp;Z)</translation>
    </message>
    <message>
        <source>Effect size</source>
        <translation>效果的大小</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Record &amp;mouse</source>
        <translation>录制鼠标(&amp;M)</translation>
    </message>
    <message>
        <source>Record the mouse next time</source>
        <translation>下次录制时录下鼠标</translation>
    </message>
</context>
<context>
    <name>EncodeFormatPanel</name>
    <message>
        <source>Export</source>
        <translation>导出</translation>
    </message>
    <message>
        <source>&amp;Format</source>
        <translation>格式(&amp;F)</translation>
    </message>
    <message>
        <source>File format of the export</source>
        <translation>导出文件的格式</translation>
    </message>
    <message>
        <source>Video with sound; plays almost everywhere</source>
        <translation>带声音的视频；几乎处处可播放</translation>
    </message>
    <message>
        <source>256-color animation without sound; plays almost everywhere</source>
        <translation>256 色动画，无声音；几乎处处可播放</translation>
    </message>
    <message>
        <source>Lossless animation in full color, without sound</source>
        <translation>全彩无损动画，无声音</translation>
    </message>
    <message>
        <source>Compact animation in full color, without sound</source>
        <translation>全彩小文件动画，无声音</translation>
    </message>
    <message>
        <source>Forever</source>
        <translation>无限循环</translation>
    </message>
    <message>
        <source>Once</source>
        <translation>1 次</translation>
    </message>
    <message numerus="yes">
        <source>%n times</source>
        <translation>
            <numerusform>%n 次</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>播放(&amp;P)</translation>
    </message>
    <message>
        <source>How many times an animation plays</source>
        <translation>动画播放的次数</translation>
    </message>
    <message>
        <source>&amp;Exit recording after export</source>
        <translation>导出后退出录制(&amp;E)</translation>
    </message>
    <message>
        <source>Exit recording mode when an export is complete</source>
        <translation>导出完成后退出录制模式</translation>
    </message>
</context>
<context>
    <name>GlobalShortcut</name>
    <message>
        <source>The keyboard has no such key.</source>
        <translation>键盘上没有这个键。</translation>
    </message>
    <message>
        <source>Another program uses it.</source>
        <translation>已被其他程序使用。</translation>
    </message>
    <message>
        <source>There is no connection to an X server.</source>
        <translation>没有可用的 X 服务器。</translation>
    </message>
    <message>
        <source>The desktop has declined it.</source>
        <translation>桌面环境拒绝了它。</translation>
    </message>
    <message>
        <source>This desktop offers no shortcuts to programs. Use the toolbar and the tray icon.</source>
        <translation>此桌面环境不向程序提供快捷键。请使用工具栏和托盘图标。</translation>
    </message>
</context>
<context>
    <name>KelPlayCtrlWidget</name>
    <message>
        <source>Playback time</source>
        <translation>播放时间</translation>
    </message>
    <message>
        <source>Playback time and total length</source>
        <translation>播放时间与总时长</translation>
    </message>
</context>
<context>
    <name>KelPlayTimeLable</name>
    <message>
        <source>Playback time</source>
        <translation>播放时间</translation>
    </message>
    <message>
        <source>Playback time and total length</source>
        <translation>播放时间与总时长</translation>
    </message>
</context>
<context>
    <name>KelPlaybackExportDialog</name>
    <message>
        <source>Export Progress</source>
        <translation>导出进度</translation>
    </message>
    <message>
        <source>Export progress</source>
        <translation>导出进度</translation>
    </message>
    <message>
        <source>Minimize the window while exporting</source>
        <translation>导出期间将窗口最小化</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>最小化</translation>
    </message>
    <message>
        <source>Stop exporting and discard the file</source>
        <translation>停止导出，不保留文件</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Exit without asking after future recordings</source>
        <translation>以后录制导出后直接退出，不再询问</translation>
    </message>
    <message>
        <source>Auto-exit recording after encoding</source>
        <translation>编码完成后自动退出录制</translation>
    </message>
    <message>
        <source>Close and exit recording mode</source>
        <translation>关闭此窗口并退出录制模式</translation>
    </message>
    <message>
        <source>Exit Record</source>
        <translation>退出录制</translation>
    </message>
    <message>
        <source>Close this window</source>
        <translation>关闭此窗口</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Frame %1 of %2, about %3 left</source>
        <translation>第 %1 帧，共 %2 帧，约剩 %3</translation>
    </message>
    <message>
        <source>Frame %1 of %2, %3 elapsed</source>
        <translation>第 %1 帧，共 %2 帧，已用 %3</translation>
    </message>
    <message>
        <source>Finishing the file, about %1 left</source>
        <translation>正在完成文件，约剩 %1</translation>
    </message>
    <message>
        <source>Finishing the file, %1 elapsed</source>
        <translation>正在完成文件，已用 %1</translation>
    </message>
    <message>
        <source>Adding sound, about %1 left</source>
        <translation>正在加入声音，约剩 %1</translation>
    </message>
    <message>
        <source>Adding sound, %1 elapsed</source>
        <translation>正在加入声音，已用 %1</translation>
    </message>
    <message>
        <source>Saving the file, about %1 left</source>
        <translation>正在保存文件，约剩 %1</translation>
    </message>
    <message>
        <source>Saving the file, %1 elapsed</source>
        <translation>正在保存文件，已用 %1</translation>
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
    <message>
        <source>Exported with problems</source>
        <translation>导出的文件有问题</translation>
    </message>
    <message>
        <source>Exporting...</source>
        <translation>正在导出...</translation>
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
        <source>Recording time</source>
        <translation>录制时间</translation>
    </message>
    <message>
        <source>Recording time. Click to set a start delay</source>
        <translation>录制时间。点击可设置开始前的延时</translation>
    </message>
</context>
<context>
    <name>KeyboardSettingsPanel</name>
    <message>
        <source>Keys</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>&amp;Show</source>
        <translation>显示(&amp;S)</translation>
    </message>
    <message>
        <source>Types of keys to show</source>
        <translation>要显示的按键种类</translation>
    </message>
    <message>
        <source>Character Keys</source>
        <translation>字符键</translation>
    </message>
    <message>
        <source>A-Z, 0-9</source>
        <translation>A-Z、0-9</translation>
    </message>
    <message>
        <source>Other Keys</source>
        <translation>其他键</translation>
    </message>
    <message>
        <source>F1-F12, ESC, TAB, SPACE, ENTER, ...</source>
        <translation>F1-F12、ESC、TAB、空格、回车等</translation>
    </message>
    <message>
        <source>Modifier Keys</source>
        <translation>修饰键</translation>
    </message>
    <message>
        <source>Ctrl, Shift, Alt, Win/Meta</source>
        <translation>Ctrl、Shift、Alt、Win/Meta</translation>
    </message>
    <message>
        <source>Combinations Keys</source>
        <translation>组合键</translation>
    </message>
    <message>
        <source>Shortcuts such as Ctrl+C</source>
        <translation>快捷键，如 Ctrl+C</translation>
    </message>
    <message>
        <source>Cha&amp;racters per box</source>
        <translation>每框字符数(&amp;R)</translation>
    </message>
    <message>
        <source>Maximum number of consecutive characters in one box</source>
        <translation>一个方框中最多连续显示的字符数</translation>
    </message>
    <message>
        <source>&amp;Keep for</source>
        <translation>保留时间(&amp;K)</translation>
    </message>
    <message>
        <source>How long a key stays visible after it is pressed</source>
        <translation>按键按下后显示多久</translation>
    </message>
    <message>
        <source>&amp;Position</source>
        <translation>位置(&amp;P)</translation>
    </message>
    <message>
        <source>Where keys are shown</source>
        <translation>按键显示的位置</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>左</translation>
    </message>
    <message>
        <source>Bottom left</source>
        <translation>左下方</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>中</translation>
    </message>
    <message>
        <source>Bottom center</source>
        <translation>正下方</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>右</translation>
    </message>
    <message>
        <source>Bottom right</source>
        <translation>右下方</translation>
    </message>
    <message>
        <source>Appearance</source>
        <translation>外观</translation>
    </message>
    <message>
        <source>&amp;Font</source>
        <translation>字体(&amp;F)</translation>
    </message>
    <message>
        <source>Font of the key labels</source>
        <translation>按键文字的字体</translation>
    </message>
    <message>
        <source>Font si&amp;ze</source>
        <translation>字号(&amp;Z)</translation>
    </message>
    <message>
        <source>Font size of the key labels</source>
        <translation>按键文字的字号</translation>
    </message>
    <message>
        <source>Font &amp;color</source>
        <translation>文字颜色(&amp;C)</translation>
    </message>
    <message>
        <source>Text color of the key labels</source>
        <translation>按键文字的颜色</translation>
    </message>
    <message>
        <source>&amp;Background</source>
        <translation>背景(&amp;B)</translation>
    </message>
    <message>
        <source>Background color of the key labels</source>
        <translation>按键方框的颜色</translation>
    </message>
    <message>
        <source>Previous keys</source>
        <translation>先前的按键</translation>
    </message>
    <message>
        <source>Bo&amp;xes</source>
        <translation>方框数(&amp;X)</translation>
    </message>
    <message>
        <source>Maximum number of boxes shown at a time</source>
        <translation>最多同时显示的方框数</translation>
    </message>
    <message>
        <source>S&amp;maller by</source>
        <translation>缩小(&amp;M)</translation>
    </message>
    <message>
        <source>How much smaller the font of previous keys is</source>
        <translation>先前按键的文字缩小多少</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Record k&amp;eyboard</source>
        <translation>录制键盘(&amp;E)</translation>
    </message>
    <message>
        <source>Record the keyboard next time</source>
        <translation>下次录制时录下键盘</translation>
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
        <source>Playback position</source>
        <translation>播放位置</translation>
    </message>
    <message>
        <source>Drag to seek; drag the ends to trim. Keys: arrows seek, I and O set the start and end</source>
        <translation>拖动以定位，拖动两端以裁剪。按键：方向键定位，I 和 O 设定起点和终点</translation>
    </message>
    <message>
        <source>Drag to seek, or use the arrow keys</source>
        <translation>拖动以定位，或使用方向键</translation>
    </message>
</context>
<context>
    <name>PlaySpeedLabel</name>
    <message>
        <source>Playback speed</source>
        <translation>播放速度</translation>
    </message>
</context>
<context>
    <name>ProgressSettingsPanel</name>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>&amp;Show progress</source>
        <translation>显示进度(&amp;S)</translation>
    </message>
    <message>
        <source>Show the progress over the video</source>
        <translation>在画面上显示播放进度</translation>
    </message>
    <message>
        <source>St&amp;yle</source>
        <translation>样式(&amp;Y)</translation>
    </message>
    <message>
        <source>How the progress is shown</source>
        <translation>进度的显示方式</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Elapsed and total time in a box</source>
        <translation>显示已播放时间和总时间的方框</translation>
    </message>
    <message>
        <source>Bar</source>
        <translation>进度条</translation>
    </message>
    <message>
        <source>Bar along the bottom edge</source>
        <translation>沿底边的进度条</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>大小(&amp;Z)</translation>
    </message>
    <message>
        <source>Font size of the time; the height of the bar follows it</source>
        <translation>时间文字的字号；进度条的高度随之变化</translation>
    </message>
    <message>
        <source>Corner &amp;radius</source>
        <translation>圆角半径(&amp;R)</translation>
    </message>
    <message>
        <source>Corner radius of the box or bar</source>
        <translation>方框或进度条的圆角半径</translation>
    </message>
    <message>
        <source>&amp;Color</source>
        <translation>颜色(&amp;C)</translation>
    </message>
    <message>
        <source>Color of the played part of the bar</source>
        <translation>进度条已播放部分的颜色</translation>
    </message>
    <message>
        <source>&amp;Background</source>
        <translation>背景(&amp;B)</translation>
    </message>
    <message>
        <source>Color of the remaining part of the bar</source>
        <translation>进度条其余部分的颜色</translation>
    </message>
    <message>
        <source>Upda&amp;te interval</source>
        <translation>更新间隔(&amp;T)</translation>
    </message>
    <message>
        <source>Minimum time between updates of the bar</source>
        <translation>进度条两次更新之间的最短时间</translation>
    </message>
</context>
<context>
    <name>SaveQualityPanel</name>
    <message>
        <source>Quality</source>
        <translation>质量</translation>
    </message>
    <message>
        <source>&amp;Quality</source>
        <translation>质量(&amp;Q)</translation>
    </message>
    <message>
        <source>Higher quality makes a larger file</source>
        <translation>质量越高，文件越大</translation>
    </message>
    <message>
        <source>Small file</source>
        <translation>小文件</translation>
    </message>
    <message>
        <source>Some blur, smallest file</source>
        <translation>略有模糊，文件最小</translation>
    </message>
    <message>
        <source>Balanced</source>
        <translation>均衡</translation>
    </message>
    <message>
        <source>Almost no visible loss, medium-sized file</source>
        <translation>几乎看不出损失，文件适中</translation>
    </message>
    <message>
        <source>Best</source>
        <translation>最佳</translation>
    </message>
    <message>
        <source>Highest quality</source>
        <translation>最高质量</translation>
    </message>
    <message>
        <source>Estimated from samples of the recording</source>
        <translation>根据录制的样本估算</translation>
    </message>
    <message>
        <source>The file size cannot be estimated.</source>
        <translation>无法估算文件大小。</translation>
    </message>
    <message>
        <source>Estimating the file size...</source>
        <translation>正在估算文件大小...</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>约 %1</translation>
    </message>
    <message>
        <source>About %1 (%2 to %3)</source>
        <translation>约 %1（%2 至 %3）</translation>
    </message>
</context>
<context>
    <name>SettingTexts</name>
    <message>
        <source>%1 px</source>
        <translation>%1 像素</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 毫秒</translation>
    </message>
</context>
<context>
    <name>kel::FloatPlaneFps</name>
    <message>
        <source>Frame rate</source>
        <translation>帧率</translation>
    </message>
</context>
<context>
    <name>kel::FloatPlanePlaySpeed</name>
    <message>
        <source>Playback speed</source>
        <translation>播放速度</translation>
    </message>
</context>
<context>
    <name>kel::FloatPlaneRecordTime</name>
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
    <name>kel::SettingsForm</name>
    <message>
        <source>Settings cannot be saved. Changes will be lost when the program exits.</source>
        <translation>无法保存设置。程序退出后更改将丢失。</translation>
    </message>
</context>
</TS>
